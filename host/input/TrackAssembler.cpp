#include "TrackAssembler.h"

#include "BoxLifter.h"
#include "InputError.h"
#include "StandingBody.h"

#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr int fullReliability = 10;  // tenths, of a link over one step; one less per further step
const char* const personType = "PERSON";

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
    linkNeighbours(observation.person, mobile, frame);
    chain.push_back({mobile, m_step});
    if (chain.size() > m_options.chainLength) {
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
  cv::Rect box2D;
  if (observation.box2D && m_calibration) {
    box2D = *observation.box2D;
    foot = foot ? foot : liftFoot(*m_calibration, box2D);
    body = foot ? liftBox(*m_calibration, box2D, *foot) : std::nullopt;
  } else if (foot) {
    body = standingBody(*foot);
    box2D =
        observation.box2D.value_or(m_calibration ? projectBox(*m_calibration, *body) : cv::Rect());
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

void TrackAssembler::linkNeighbours(std::uint32_t person, const MobilePointer& mobile,
                                    InputFrame& frame) const {
  for (const auto& [neighbour, seen] : m_previous) {
    const double apart = distance(seen, mobile);
    if (neighbour != person && apart < m_options.neighbourRadius) {
      const double closeness = 1.0 - apart / m_options.neighbourRadius;
      kelDataLinkedPhysicalObject::addFatherLink(seen, mobile,
                                                 m_options.neighbourStrength * closeness);
      frame.fathers.push_back(seen);
    }
  }
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
  for (const Seen& seen : chain) {
    actor->addLinkedPhysicalObject(seen.mobile);
  }
  return actor;
}

void TrackAssembler::forgetTheGone() {
  for (auto chain = m_chains.begin(); chain != m_chains.end();) {
    const bool isGone = m_step - chain->second.back().step > m_options.chainLength;
    chain = isGone ? m_chains.erase(chain) : std::next(chain);
  }
}
