#include "host/people/TrackAssembler.h"

#include "host/base/InputError.h"
#include "host/base/PersonNames.h"
#include "host/camera/BoxLifter.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace grouptracker {

namespace {

constexpr int fullReliability = 10;  // tenths, of a link over one step; one less per further step
const char* const personType = "PERSON";

/// The box with its edges at the nearest pixels.
cv::Rect wholePixels(const cv::Rect2d& box) {
  return {cv::Point(cvRound(box.x), cvRound(box.y)),
          cv::Point(cvRound(box.x + box.width), cvRound(box.y + box.height))};
}

cv::Point2d placeOf(const kelDataLinkedPhysicalObject& mobile) {
  const cv::Point3f& position = mobile.getPhysicalObject()->getPosition();
  return {position.x, position.y};
}

}  // namespace

void Companions::see(const PeopleFrame& people) {
  m_memberships.clear();
  for (const FrameGroups& frame : m_finder.next(people)) {
    for (const FoundGroup& group : frame.groups) {
      for (const PersonId member : group.members) {
        m_memberships[member] = {group.id, group.confidence};
      }
    }
  }
}

double Companions::certainty(std::uint32_t a, std::uint32_t b) const {
  const auto groupOfA = m_memberships.find(a);
  const auto groupOfB = m_memberships.find(b);
  const bool areTogether = groupOfA != m_memberships.end() && groupOfB != m_memberships.end() &&
                           groupOfA->second.group == groupOfB->second.group;
  return areTogether ? groupOfA->second.confidence : 0.0;
}

TrackAssembler::TrackAssembler(std::unique_ptr<ObservationSource> source, Calibration calibration,
                               const LinkOptions& options, const std::optional<FrameRate>& rate)
    : m_source(std::move(source)), m_calibration(std::move(calibration)), m_rate(rate) {
  relink(options);
}

void TrackAssembler::relink(const LinkOptions& options) {
  m_options = options;
  m_companions.reset();
  if (m_options.evidenceStrength > 0.0) {
    m_companions.emplace();
  }
}

bool TrackAssembler::next(InputFrame& frame) {
  if (!m_source->next(m_observed)) {
    return false;
  }
  ++m_step;
  frame = InputFrame();
  frame.number = m_observed.frame;
  frame.time = m_observed.time;
  frame.place = m_observed.place;
  frame.imageFile = m_observed.imageFile;
  std::vector<Neighbour> current;
  current.reserve(m_observed.observations.size());
  frame.observed = makeMobiles();
  seeCompanions(frame.observed);
  for (std::size_t i = 0; i < frame.observed.size(); ++i) {
    const std::uint32_t person = m_observed.observations[i].person;
    const MobilePointer& mobile = frame.observed[i];
    Chain& chain = m_chains[person];
    linkOwn(chain, mobile, frame);
    linkOthers(person, mobile, frame);
    chain.push_back({mobile, m_step});
    if (chain.size() > memory()) {
      chain.pop_front();
    }
    frame.actors.append(makeActor(person, chain));
    const auto motion = displacement(chain);
    const double way = motion ? std::hypot(motion->x, motion->y) : 0.0;
    current.push_back({person, mobile, placeOf(*mobile), motion, way});
  }
  m_previous = std::move(current);
  forgetTheGone();
  return true;
}

/// One for each observation of the step.
std::vector<MobilePointer> TrackAssembler::makeMobiles() {
  std::vector<MobilePointer> mobiles;
  mobiles.reserve(m_observed.observations.size());
  for (const Observation& observation : m_observed.observations) {
    mobiles.push_back(makeMobile(observation, m_observed.place));
  }
  return mobiles;
}

MobilePointer TrackAssembler::makeMobile(const Observation& observation, const InputPlace& place) {
  auto foot = observation.position
                  ? std::optional(cv::Point3f(static_cast<float>(observation.position->x),
                                              static_cast<float>(observation.position->y), 0.0F))
                  : std::nullopt;
  std::optional<BoundingBox3D> body;
  cv::Rect box2D = observation.box2D ? wholePixels(*observation.box2D) : cv::Rect();
  if (observation.box2D && m_calibration) {
    foot = foot ? foot : liftFoot(*m_calibration, *observation.box2D);
    body = foot ? liftBox(*m_calibration, *observation.box2D, *foot) : std::nullopt;
  } else if (foot) {
    body = standingBody(*foot);
    box2D = m_calibration ? projectBox(*m_calibration, *body) : box2D;
  }
  if (!body) {
    throw InputError(place, "the place of person " +
                                PersonNames::ofProgram().textOf(observation.person) +
                                " cannot be derived from its box");
  }
  return MobilePointer::create(
      nextId(), QSharedPointer<kelDataPhysicalObject>::create(personType, box2D, *body, *foot));
}

// The largest id means "none" to trackers; after it the ids start again, their first bearers are
// long forgotten by then.
std::uint32_t TrackAssembler::nextId() {
  constexpr std::uint32_t largestId = std::numeric_limits<std::uint32_t>::max() - 1;
  m_lastId = m_lastId == largestId ? 1 : m_lastId + 1;
  return m_lastId;
}

void TrackAssembler::linkOwn(const Chain& chain, const MobilePointer& mobile,
                             InputFrame& frame) const {
  std::size_t links = 0;
  for (auto seen = chain.rbegin(); seen != chain.rend() && links < m_options.ownLinks; ++seen) {
    const auto stepsBack = static_cast<std::int64_t>(m_step - seen->step);
    const std::int64_t tenths = fullReliability - (stepsBack - 1);
    if (tenths <= 0) {
      return;
    }
    kelDataLinkedPhysicalObject::addFatherLink(seen->mobile, mobile,
                                               static_cast<double>(tenths) / fullReliability);
    frame.fathers.push_back(seen->mobile);
    ++links;
  }
}

void TrackAssembler::seeCompanions(const std::vector<MobilePointer>& mobiles) {
  if (!m_companions) {
    return;
  }
  PeopleFrame people{m_observed.frame, m_observed.time, {}};
  if (m_rate) {
    people.time = m_rate->timeOf(m_observed.frame, m_observed.time);
  }
  for (std::size_t i = 0; i < mobiles.size(); ++i) {
    const cv::Point2d place = placeOf(*mobiles[i]);
    if (std::isfinite(place.x) && std::isfinite(place.y)) {
      people.people.push_back({m_observed.observations[i].person, place});
    }
  }
  m_companions->see(people);
}

void TrackAssembler::linkOthers(std::uint32_t person, const MobilePointer& mobile,
                                InputFrame& frame) const {
  if (m_options.neighbourLinks == 0) {
    return;
  }
  std::vector<Link> links =
      m_companions ? linksToCompanions(person) : linksToNeighbours(person, mobile);
  const std::size_t count = std::min(links.size(), m_options.neighbourLinks);
  const auto end = links.begin() + static_cast<std::ptrdiff_t>(count);
  std::partial_sort(links.begin(), end, links.end(), [](const Link& a, const Link& b) {
    return a.first > b.first || (a.first == b.first && a.second < b.second);
  });
  for (auto link = links.begin(); link != end; ++link) {
    const auto& [reliability, other] = *link;
    kelDataLinkedPhysicalObject::addFatherLink(other->mobile, mobile, reliability);
    frame.fathers.push_back(other->mobile);
  }
}

std::vector<TrackAssembler::Link> TrackAssembler::linksToCompanions(std::uint32_t person) const {
  std::vector<Link> links;
  for (const Neighbour& other : m_previous) {
    const double certainty =
        other.person == person ? 0.0 : m_companions->certainty(person, other.person);
    if (certainty > 0.0) {
      links.emplace_back(m_options.evidenceStrength * certainty, &other);
    }
  }
  return links;
}

std::vector<TrackAssembler::Link> TrackAssembler::linksToNeighbours(
    std::uint32_t person, const MobilePointer& mobile) const {
  const auto found =
      std::lower_bound(m_previous.begin(), m_previous.end(), person,
                       [](const Neighbour& seen, std::uint32_t id) { return seen.person < id; });
  const bool wasThere = found != m_previous.end() && found->person == person;
  // Where both are known at the same instant, their distance does not depend on who walks ahead.
  const Neighbour self =
      wasThere ? *found : Neighbour{person, mobile, placeOf(*mobile), std::nullopt, 0.0};
  std::vector<Link> links;
  for (const Neighbour& neighbour : m_previous) {
    const cv::Point2d apart = neighbour.place - self.place;
    const double distance =
        std::max(std::abs(apart.x), std::abs(apart.y)) < m_options.neighbourRadius
            ? std::hypot(apart.x, apart.y)
            : m_options.neighbourRadius;  // no need to know it better
    if (neighbour.person == person || !(distance < m_options.neighbourRadius)) {
      continue;
    }
    const double closeness = 1.0 - distance / m_options.neighbourRadius;
    const double likeness = motionLikeness(self, neighbour);
    if (closeness * likeness > 0.0) {
      links.emplace_back(m_options.neighbourStrength * closeness * likeness, &neighbour);
    }
  }
  return links;
}

// The way from `motionSteps` steps ago, or as much of it as is known without a gap of that length,
// to the latest observation, extended to the full number of steps.
std::optional<cv::Point2d> TrackAssembler::displacement(const Chain& chain) const {
  const Seen& last = chain.back();
  const Seen* first = &last;
  for (auto seen = chain.rbegin(); seen != chain.rend(); ++seen) {
    if (last.step - seen->step > m_options.motionSteps) {
      break;
    }
    first = &*seen;
  }
  if (first->step == last.step) {
    return std::nullopt;
  }
  const auto& from = first->mobile->getPhysicalObject()->getPosition();
  const auto& to = last.mobile->getPhysicalObject()->getPosition();
  const double scale =
      static_cast<double>(m_options.motionSteps) / static_cast<double>(last.step - first->step);
  return cv::Point2d((to.x - from.x) * scale, (to.y - from.y) * scale);
}

// People who stand, and those whose way is not known yet, are not alike by that: most who wait side
// by side do not belong together.
double TrackAssembler::motionLikeness(const Neighbour& a, const Neighbour& b) const {
  if (m_options.motionDifference <= 0.0) {
    return 1.0;
  }
  const double way = a.motion && b.motion ? (a.way + b.way) / 2.0 : 0.0;
  if (way <= 0.0) {
    return 0.0;
  }
  const double difference = std::hypot(a.motion->x - b.motion->x, a.motion->y - b.motion->y) / way;
  return std::max(0.0, 1.0 - difference / m_options.motionDifference);
}

QSharedPointer<kelDataActor> TrackAssembler::makeActor(std::uint32_t person,
                                                       const Chain& chain) const {
  auto actor = QSharedPointer<kelDataActor>::create();
  const kelDataPhysicalObject& current = *chain.back().mobile->getPhysicalObject();
  actor->setIdent(person);
  actor->setType(current.getType());
  actor->setCurrentPosition(current.getPosition());
  actor->setBoundingBox2D(current.getBoundingBox2D());
  actor->setBoundingBox3D(current.getBoundingBox3D());
  const std::size_t listed = std::min(chain.size(), m_options.chainLength);
  for (auto seen = chain.end() - static_cast<std::ptrdiff_t>(listed); seen != chain.end(); ++seen) {
    actor->addLinkedPhysicalObject(seen->mobile);
  }
  return actor;
}

std::size_t TrackAssembler::memory() const {
  return std::max({m_options.chainLength, m_options.ownLinks + 1, m_options.motionSteps + 2});
}

void TrackAssembler::forgetTheGone() {
  for (auto chain = m_chains.begin(); chain != m_chains.end();) {
    const bool isGone = m_step - chain->second.back().step > memory();
    chain = isGone ? m_chains.erase(chain) : std::next(chain);
  }
}

}  // namespace grouptracker
