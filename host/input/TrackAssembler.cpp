#include "TrackAssembler.h"

#include "BoxLifter.h"
#include "InputError.h"
#include "StandingBody.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr int fullReliability = 10;  // tenths, of a link over one step; one less per further step
const char* const personType = "PERSON";

/// The box with its edges at the nearest pixels.
cv::Rect wholePixels(const cv::Rect2d& box) {
  return {cv::Point(cvRound(box.x), cvRound(box.y)),
          cv::Point(cvRound(box.x + box.width), cvRound(box.y + box.height))};
}

double distance(const MobilePointer& a, const MobilePointer& b) {
  const cv::Point3f& from = a->getPhysicalObject()->getPosition();
  const cv::Point3f& to = b->getPhysicalObject()->getPosition();
  return std::hypot(static_cast<double>(from.x) - to.x, static_cast<double>(from.y) - to.y);
}

}  // namespace

TrackAssembler::TrackAssembler(std::unique_ptr<ObservationSource> source, Calibration calibration,
                               const LinkOptions& options)
    : m_source(std::move(source)), m_calibration(std::move(calibration)), m_options(options) {}

bool TrackAssembler::next(InputFrame& frame) {
  if (!m_source->next(m_observed)) {
    return false;
  }
  ++m_step;
  frame = InputFrame();
  frame.number = m_observed.frame;
  frame.place = m_observed.place;
  frame.imageFile = m_observed.imageFile;
  std::map<std::uint32_t, MobilePointer> current;
  for (const Observation& observation : m_observed.observations) {
    const MobilePointer mobile = makeMobile(observation, frame.place);
    Chain& chain = m_chains[observation.person];
    linkOwn(chain, mobile, frame);
    linkNeighbours(chain, observation.person, mobile, frame);
    chain.push_back({mobile, m_step});
    if (chain.size() > memory()) {
      chain.pop_front();
    }
    frame.observed.push_back(mobile);
    frame.actors.append(makeActor(observation.person, chain));
    current.emplace(observation.person, mobile);
  }
  m_previous = std::move(current);
  forgetTheGone();
  return true;
}

MobilePointer TrackAssembler::makeMobile(const Observation& observation, const std::string& place) {
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
    throw InputError(place, "the place of person " + std::to_string(observation.person) +
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

void TrackAssembler::linkNeighbours(const Chain& chain, std::uint32_t person,
                                    const MobilePointer& mobile, InputFrame& frame) const {
  const bool wasThere = !chain.empty() && chain.back().step + 1 == m_step;
  // Where both are known at the same instant, their distance does not depend on who walks ahead.
  const MobilePointer& origin = wasThere ? chain.back().mobile : mobile;
  const auto motion = displacement(chain);
  std::vector<std::pair<double, MobilePointer>> links;
  for (const auto& [neighbour, seen] : m_previous) {
    const double apart = distance(seen, origin);
    if (neighbour == person || !(apart < m_options.neighbourRadius)) {
      continue;
    }
    const double closeness = 1.0 - apart / m_options.neighbourRadius;
    const double likeness = motionLikeness(motion, displacement(m_chains.at(neighbour)));
    if (closeness * likeness > 0.0) {
      links.emplace_back(m_options.neighbourStrength * closeness * likeness, seen);
    }
  }
  std::stable_sort(links.begin(), links.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  links.resize(std::min(links.size(), m_options.neighbourLinks));
  for (const auto& [reliability, seen] : links) {
    kelDataLinkedPhysicalObject::addFatherLink(seen, mobile, reliability);
    frame.fathers.push_back(seen);
  }
}

// The way from `motionSteps` steps ago, or as much of it as is known, to the step before, extended
// to the full number of steps.
std::optional<cv::Point2d> TrackAssembler::displacement(const Chain& chain) const {
  std::optional<Seen> last;
  std::optional<Seen> first;
  for (auto seen = chain.rbegin(); seen != chain.rend(); ++seen) {
    if (seen->step >= m_step) {
      continue;
    }
    last = last ? last : std::optional(*seen);
    if (last->step + 1 < m_step || last->step - seen->step > m_options.motionSteps) {
      break;
    }
    first = *seen;
  }
  if (!last || !first || first->step == last->step) {
    return std::nullopt;
  }
  const auto& from = first->mobile->getPhysicalObject()->getPosition();
  const auto& to = last->mobile->getPhysicalObject()->getPosition();
  const double scale =
      static_cast<double>(m_options.motionSteps) / static_cast<double>(last->step - first->step);
  return cv::Point2d((to.x - from.x) * scale, (to.y - from.y) * scale);
}

double TrackAssembler::motionLikeness(const std::optional<cv::Point2d>& a,
                                      const std::optional<cv::Point2d>& b) const {
  if (m_options.motionDifference <= 0.0 || !a || !b) {
    return 1.0;
  }
  const double difference = std::hypot(a->x - b->x, a->y - b->y);
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
