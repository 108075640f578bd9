#include "tests/support/process/RandomScene.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double side = 12.0;           // metres of the square in which people walk
constexpr std::size_t ownFathers = 5;   // observations of his own that a mobile links to
constexpr double neighbourReach = 2.0;  // metres
constexpr double neighbourLinks = 0.3;  // reliability of a link to somebody at distance 0
constexpr std::size_t seenAtMost = 29;  // mobiles of an actor before the current one

}  // namespace

RandomScene::RandomScene(const Options& options)
    : m_options(options), m_random(options.seed), m_nextIdent(options.firstIdent) {}

// The distributions of the standard library differ between systems.
bool RandomScene::chance(double probability) {
  return between(0.0, 1.0) < static_cast<float>(probability);
}

float RandomScene::between(double low, double high) {
  constexpr double steps = 4294967296.0;
  return static_cast<float>(low + (high - low) * (static_cast<double>(m_random()) / steps));
}

unsigned int RandomScene::below(std::size_t end) {
  return static_cast<unsigned int>(m_random() % end);
}

const QList<QSharedPointer<kelDataActor>>& RandomScene::next() {
  ++m_frame;
  m_declaredNow.clear();
  while (m_walkers.size() < m_options.people) {
    addParty();
  }
  const bool isEmpty = m_options.hasOddities && chance(0.03);
  for (auto& walker : m_walkers) {
    move(walker);
    if (!isEmpty && walker.hiddenFrames == 0) {
      observe(walker);
    }
  }
  if (m_options.hasOddities && chance(0.02)) {
    m_scene.frame(m_frame).emptyActor(m_nextActor++);
  }
  std::erase_if(m_walkers, [this](const Walker&) { return chance(0.005); });
  m_recent.insert(m_recent.end(), m_declaredNow.begin(), m_declaredNow.end());
  const auto& actors = m_scene.actors(m_frame);
  if (m_frame > m_options.memory) {
    m_scene.forgetBefore(m_frame - m_options.memory);
    std::erase_if(m_recent, [this](unsigned int ident) { return !m_scene.knows(ident); });
    for (auto& walker : m_walkers) {
      std::erase_if(walker.seen, [this](unsigned int ident) { return !m_scene.knows(ident); });
    }
  }
  return actors;
}

void RandomScene::addParty() {
  const cv::Point2f middle(between(0, side), between(0, side));
  const cv::Point2f step(between(-0.4, 0.4), between(-0.4, 0.4));
  for (unsigned int size = chance(0.4) ? 1 : 2 + below(3); size > 0; --size) {
    const cv::Point2f offset(between(-0.8, 0.8), between(-0.8, 0.8));
    m_walkers.push_back({m_nextActor++, middle + offset, step, 0, {}});
  }
}

void RandomScene::move(Walker& walker) {
  walker.place += walker.step + cv::Point2f(between(-0.05, 0.05), between(-0.05, 0.05));
  if (walker.place.x < 0 || walker.place.x > side) {
    walker.step.x = std::copysign(walker.step.x, static_cast<float>(side / 2) - walker.place.x);
  }
  if (walker.place.y < 0 || walker.place.y > side) {
    walker.step.y = std::copysign(walker.step.y, static_cast<float>(side / 2) - walker.place.y);
  }
  if (walker.hiddenFrames > 0) {
    --walker.hiddenFrames;
  } else if (chance(0.02)) {
    walker.hiddenFrames = static_cast<int>(1 + below(15));
  }
}

void RandomScene::observe(Walker& walker) {
  const unsigned int ident = newIdent(walker);
  SceneMobile& mobile = m_scene.frame(m_frame).person(ident);
  mobile.at(walker.place.x, walker.place.y).actor(walker.actor).chain(walker.seen);
  linkToOwnPast(walker, mobile);
  linkToNeighbours(walker, mobile);
  if (m_options.hasOddities) {
    addOddities(mobile);
  }
  m_declaredNow.push_back(ident);
  walker.seen.push_back(ident);
  if (walker.seen.size() > seenAtMost) {
    walker.seen.erase(walker.seen.begin());
  }
}

unsigned int RandomScene::newIdent(const Walker& walker) {
  if (m_options.reusesIds && !m_recent.empty() && chance(0.1)) {
    const bool isOwn = !walker.seen.empty() && chance(0.7);
    const unsigned int ident = isOwn ? walker.seen.back() : m_recent[below(m_recent.size())];
    if (std::count(m_declaredNow.begin(), m_declaredNow.end(), ident) == 0) {
      return ident;
    }
  }
  return m_nextIdent++;
}

void RandomScene::linkToOwnPast(const Walker& walker, SceneMobile& mobile) {
  const std::size_t links = std::min(ownFathers, walker.seen.size());
  for (std::size_t back = 0; back < links; ++back) {
    const double reliability = 1.0 - 0.1 * static_cast<double>(back) - between(0, 0.1);
    mobile.from(*(walker.seen.rbegin() + static_cast<std::ptrdiff_t>(back)), reliability);
  }
}

void RandomScene::linkToNeighbours(const Walker& walker, SceneMobile& mobile) {
  for (const auto& other : m_walkers) {
    const double distance = cv::norm(other.place - walker.place);
    if (other.actor != walker.actor && !other.seen.empty() && distance < neighbourReach) {
      mobile.from(other.seen.back(), neighbourLinks * (1.0 - distance / neighbourReach));
    }
  }
}

void RandomScene::addOddities(SceneMobile& mobile) {
  if (!m_recent.empty() && chance(0.05)) {
    mobile.from(m_recent[below(m_recent.size())], between(0, 1));
  }
  if (chance(0.05)) {
    mobile.size(between(0.4, 2.0), between(0.4, 2.0), between(1.0, 3.0));
  }
  static const char* const types[] = {"NOISE", "GROUP_OF_PERSONS", "CROWD", "UNKNOWN", ""};
  if (chance(0.12)) {
    mobile.type(types[below(std::size(types))]);
  }
}
