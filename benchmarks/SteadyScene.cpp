#include "benchmarks/SteadyScene.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

namespace {

constexpr float metresPerPerson = 5.0F;  // side of the square that a person has on average
constexpr float speed = 1.2F;            // metres per second
constexpr float jitter = 0.01F;          // metres
constexpr float spacing = 0.6F;          // metres between people of a group
constexpr std::size_t listLength = 30;
constexpr std::size_t links = 5;
constexpr float fullTurn = 6.2831853F;

}  // namespace

SteadyScene::SteadyScene(const Options& options)
    : m_options(options),
      m_side(metresPerPerson * std::sqrt(static_cast<float>(options.people))),
      m_people(static_cast<std::size_t>(options.people)) {
  renew();
}

// Written out, because distributions of the standard library differ between implementations.
float SteadyScene::between(float low, float high) {
  return low + (high - low) * static_cast<float>(m_random() >> 8) / 16777216.0F;
}

int SteadyScene::groupSize() {
  switch (m_options.grouping) {
    case Grouping::dense:
      return m_options.people;
    case Grouping::small:
      return 3;
    case Grouping::mixed:
      break;
  }
  return between(0, 1) < 0.4F ? 1 : 2 + static_cast<int>(between(0, 2.99F));
}

void SteadyScene::addGroup(std::size_t first, int size) {
  const cv::Point2f center(between(0, m_side), between(0, m_side));
  const float direction = between(0, fullTurn);
  const float reach = spacing * std::sqrt(static_cast<float>(size));
  const auto stay = static_cast<std::uint64_t>(m_options.stay);
  const std::uint64_t leaves =
      stay == 0 ? 0 : m_frame + stay / 2 + static_cast<std::uint64_t>(between(0, 1) * stay);
  for (std::size_t i = first; i < first + static_cast<std::size_t>(size); ++i) {
    m_people[i] = {m_nextActor++,
                   center + cv::Point2f(between(-reach, reach), between(-reach, reach)),
                   cv::Point2f(std::cos(direction), std::sin(direction)) * (speed / m_options.rate),
                   leaves,
                   {}};
  }
}

// Fills the places that are still or again empty.
void SteadyScene::renew() {
  for (std::size_t i = 0; i < m_people.size();) {
    if (m_people[i].actor != 0 && (m_people[i].leaves == 0 || m_people[i].leaves > m_frame)) {
      ++i;
      continue;
    }
    std::size_t end = i;
    const std::size_t wanted = i + static_cast<std::size_t>(groupSize());
    while (end < std::min(wanted, m_people.size()) &&
           (m_people[end].actor == 0 ||
            (m_people[end].leaves != 0 && m_people[end].leaves <= m_frame))) {
      ++end;
    }
    addGroup(i, static_cast<int>(end - i));
    i = end;
  }
}

void SteadyScene::walk(Person& person) {
  person.place += person.step + cv::Point2f(between(-jitter, jitter), between(-jitter, jitter));
  const auto wrapped = [this](float coordinate) {
    return coordinate < 0 ? coordinate + m_side
                          : (coordinate > m_side ? coordinate - m_side : coordinate);
  };
  const cv::Point2f place(wrapped(person.place.x), wrapped(person.place.y));
  if (place != person.place) {
    person.place = place;
    person.seen.clear();  // who comes in on the other side is somebody new
    person.actor = m_nextActor++;
  }
}

void SteadyScene::observe(Person& person) {
  const auto [x, y] = person.place;
  const BoundingBox3D box{x + 0.25F, y + 0.25F, 1.7F, x - 0.25F, y - 0.25F, 0.0F};
  const cv::Rect image(static_cast<int>(x * 10) % 1000, static_cast<int>(y * 10) % 700, 20, 50);
  const auto mobile = QSharedPointer<kelDataLinkedPhysicalObject>::create(
      m_nextIdent++,
      QSharedPointer<kelDataPhysicalObject>::create("PERSON", image, box, cv::Point3f(x, y, 0.0F)));
  double reliability = 1.0;
  const std::size_t known = std::min(person.seen.size(), links);
  for (std::size_t back = 1; back <= known; ++back) {
    kelDataLinkedPhysicalObject::addFatherLink(person.seen[person.seen.size() - back], mobile,
                                               reliability);
    reliability -= 0.1;
  }
  person.seen.push_back(mobile);
  if (person.seen.size() > listLength) {
    person.seen.pop_front();
  }
}

SteadyScene::Actors SteadyScene::next() {
  ++m_frame;
  renew();
  Actors actors;
  for (Person& person : m_people) {
    walk(person);
    observe(person);
    auto actor = QSharedPointer<kelDataActor>::create();
    actor->setIdent(person.actor);
    actor->setType("PERSON");
    actor->setBoundingBox3D(person.seen.back()->getPhysicalObject()->getBoundingBox3D());
    for (const auto& mobile : person.seen) {
      actor->addLinkedPhysicalObject(mobile);
    }
    actors.append(actor);
  }
  return actors;
}

std::string SteadyScene::nextAsLine() {
  std::string mobiles;
  std::string actors;
  for (const auto& actor : next()) {
    const auto& list = actor->getLinkedPhysicalObjectList();
    const auto& mobile = *list.back();
    const auto& object = *mobile.getPhysicalObject();
    const auto& box = object.getBoundingBox3D();
    const auto& image = object.getBoundingBox2D();
    std::string fathers;
    for (const auto& link : mobile.getFatherLinks()) {
      fathers += fmt::format("{}{{\"id\": {}, \"reliability\": {}}}", fathers.empty() ? "" : ", ",
                             link->getFather()->getIdent(), link->getReliability());
    }
    std::string ids;
    for (const auto& member : list) {
      ids += fmt::format("{}{}", ids.empty() ? "" : ", ", member->getIdent());
    }
    const char* const separator = mobiles.empty() ? "" : ", ";
    mobiles += fmt::format(
        "{}{{\"id\": {}, \"type\": \"PERSON\", \"box2d\": [{}, {}, {}, {}], \"box3d\": [{}, {}, "
        "{}, {}, "
        "{}, {}], \"position\": [{}, {}, 0], \"fathers\": [{}]}}",
        separator, mobile.getIdent(), image.x, image.y, image.width, image.height, box.b0, box.b1,
        box.b2, box.b3, box.b4, box.b5, object.getPosition().x, object.getPosition().y, fathers);
    actors += fmt::format("{}{{\"id\": {}, \"mobiles\": [{}]}}", separator, actor->getIdent(), ids);
  }
  return fmt::format("{{\"mobiles\": [{}], \"actors\": [{}]}}\n", mobiles, actors);
}
