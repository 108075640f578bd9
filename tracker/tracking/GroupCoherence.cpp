#include "tracker/geometry/Util.h"
#include "tracker/tracking/Group.h"
#include "tracker/tracking/GroupTrial.h"

#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr double farFromRepresentative = 3.0;  // metres
constexpr double incoherent = 1000.0;          // beyond every sensible threshold
constexpr double emptyHeight = 0.001;          // metres; a lower 3D box holds nobody

// The weights of a walk into the future: the first steps weigh most, and the longer the walk the
// slower they fall.
struct WalkWeights {
  explicit WalkWeights(int steps = 0) {
    const double decay = steps + 1;
    for (int i = 0; i < steps; ++i) {
      weights.push_back(10.0 * std::exp(-static_cast<double>(i) / decay) / decay);
      sum += weights.back();
    }
  }

  std::vector<double> weights;
  double sum = 0.0;
};

constexpr int usualSteps = 64;  // walks are as long as the window at most

// The weights of all walks of usual length; never changed once they are made.
const std::vector<WalkWeights>& usualWeights() {
  static const std::vector<WalkWeights> weights = [] {
    std::vector<WalkWeights> all;
    for (int steps = 0; steps <= usualSteps; ++steps) {
      all.emplace_back(steps);
    }
    return all;
  }();
  return weights;
}

// The coherences along a walk, weighted. The coherence before the walk enters without a weight and
// is not counted among the weights.
class WeightedCoherence {
 public:
  WeightedCoherence(double firstCoherence, int steps)
      : m_ownWeights(steps > usualSteps ? steps : 0),
        m_weights(steps > usualSteps ? m_ownWeights
                                     : usualWeights()[static_cast<std::size_t>(steps)]),
        m_sum(firstCoherence) {}
  WeightedCoherence(const WeightedCoherence&) = delete;
  WeightedCoherence& operator=(const WeightedCoherence&) = delete;
  ~WeightedCoherence() = default;

  void add(double coherence) { m_sum += m_weights.weights[m_count++] * coherence; }
  /// Only grows with what is added, as coherences are never negative.
  double value() const { return m_sum / m_weights.sum * 10.0; }

 private:
  const WalkWeights m_ownWeights;  ///< of an unusually long walk
  const WalkWeights& m_weights;
  double m_sum;
  std::size_t m_count = 0;
};

// How many steps two walkers make together before one of them has no son any more; the first step
// is where they stand.
int stepsTogether(const MetaLPO* a, const MetaLPO* b) {
  int steps = 0;
  while (a != nullptr && b != nullptr) {
    ++steps;
    a = a->descendant();
    b = b->descendant();
  }
  return steps;
}

}  // namespace

void Cohesion::updateDistance(int distinctFrames, const FrameMembers& changed,
                              const MetaLPO* nextLower) {
  const double earlierFrames = static_cast<unsigned int>(distinctFrames) - 1U;
  if (changed.hasSeveral()) {
    const auto [sum, pairs] = changed.pairDistances();
    avgIntraDist = (earlierFrames * closedAvgIntraDist + sum / pairs) / (earlierFrames + 1.0);
  } else if (nextLower != nullptr) {
    const double distance =
        Util::norm3D(changed.members()[0]->getBaseCenter() - nextLower->getBaseCenter());
    avgIntraDist = (earlierFrames * closedAvgIntraDist + 2 * distance) / (earlierFrames + 2.0);
  }
}

double Cohesion::coherence() const {
  const double distance = static_cast<double>(Group::distWeight) * avgIntraDist;
  const double speed = static_cast<double>(Group::speedSimWeight) * spreads.speed;
  const double direction = static_cast<double>(Group::dirSimWeight) * spreads.direction;
  const unsigned int weights = Group::distWeight + Group::speedSimWeight + Group::dirSimWeight;
  return (distance + speed + direction) / static_cast<double>(weights);
}

double Group::groupCoherence() const {
  return m_cohesion.coherence();
}

double Group::groupCoherence(const QSharedPointer<kelDataLinkedPhysicalObject>& object,
                             unsigned int frame) {
  // An id of 0 counts as no representative, even when a mobile has it.
  if (m_bestMobileId != 0) {
    const MetaLPO* member = m_members.find(m_bestMobileId);
    if (member != nullptr &&
        Util::distance3D(object->getPhysicalObject()->getBoundingBox3D(),
                         member->observation().getBoundingBox3D()) > farFromRepresentative) {
      return incoherent;
    }
  }
  const int bestMobileId = m_bestMobileId;
  const int numMobiles = m_numMobiles;
  const double avgIntraDist = m_cohesion.avgIntraDist;
  const Spreads spreads = m_cohesion.spreads;
  addMobile(object, static_cast<int>(frame));
  const double coherence = groupCoherence();
  removeMobile(signedId(object->getIdent()));
  m_bestMobileId = bestMobileId;
  m_numMobiles = numMobiles;
  m_cohesion.avgIntraDist = avgIntraDist;
  m_cohesion.spreads = spreads;
  return coherence;
}

double Group::groupCoherence(const QSharedPointer<MetaLPO>& mobile) const {
  return groupCoherence(mobile, std::numeric_limits<double>::infinity());
}

double Group::groupCoherence(const QSharedPointer<MetaLPO>& mobile, double limit) const {
  const auto coherence = coherenceByTrial(mobile.data(), limit);
  return coherence ? *coherence : coherenceByCopy(mobile);
}

std::optional<double> Group::coherenceByTrial(MetaLPO* mobile, double limit) const {
  GroupTrial trial(m_members, m_cohesion);
  if (!trial.add(mobile)) {
    return {};
  }
  trial.updateSpreads();
  const unsigned int frame = mobile->getFrame();
  const FrameMembers& together = *trial.at(frame);
  const FrameMembers* before = trial.at(trial.frameBefore(frame));
  const int representativeId = representative(together.members(), before->center());

  const auto walker = [&](int id) {
    return id == mobile->getIdent() ? mobile : m_members.find(id);
  };
  MetaLPO* a = walker(representativeId);
  const bool pairWithItself = a == mobile && together.presence() == 2;
  // A group that was just clustered has no representative yet: then there is no walk, and nothing
  // that could make the coherence small.
  MetaLPO* b = pairWithItself ? walker(m_bestMobileId) : mobile;

  WeightedCoherence coherence(trial.coherence(), stepsTogether(a, b));
  while (a != nullptr && b != nullptr) {
    if (!trial.add(a) || (b->getIdent() != a->getIdent() && !trial.add(b))) {
      return {};
    }
    trial.updateSpreads();
    coherence.add(trial.coherence());
    if (coherence.value() >= limit) {
      return coherence.value();  // the rest can only add to it
    }
    a = a->descendant();
    b = b->descendant();
  }
  return coherence.value();
}

// The same on a copy of the whole group, for ids that were declared again: there a mobile may take
// the place of a member at another frame.
double Group::coherenceByCopy(const QSharedPointer<MetaLPO>& mobile) const {
  Group trial(*this);
  trial.addMobile(mobile);
  trial.computeBestMobile(static_cast<int>(mobile->getFrame()));
  const double firstCoherence = trial.groupCoherence();

  const auto walker = [&](int id) {
    const auto member = trial.getMobiles().find(id);
    return member == trial.getMobiles().end() ? QSharedPointer<MetaLPO>() : member->second;
  };
  auto a = walker(trial.m_bestMobileId);
  const bool pairWithItself = trial.m_bestMobileId == mobile->getIdent() &&
                              trial.numMobilesAtFrame(mobile->getFrame()) == 2;
  auto b = pairWithItself ? walker(m_bestMobileId) : mobile;

  WeightedCoherence coherence(firstCoherence, stepsTogether(a.data(), b.data()));
  while (a && b) {
    trial.addMobile(a);
    if (b->getIdent() != a->getIdent()) {
      trial.addMobile(b);
    }
    coherence.add(trial.groupCoherence());
    a = a->descendant() == nullptr ? QSharedPointer<MetaLPO>() : a->getBestSon();
    b = b->descendant() == nullptr ? QSharedPointer<MetaLPO>() : b->getBestSon();
  }
  return coherence.value();
}

void Group::updateProperties(unsigned int frame) {
  if (const FrameMembers* changed = m_members.at(frame)) {
    const MetaLPO* lower =
        changed->hasSeveral() ? nullptr : m_members.nextLower(changed->members()[0]->getIdent());
    m_cohesion.updateDistance(countDistinctFrames(), *changed, lower);
  }
  m_cohesion.spreads = m_members.meanSpreads();
}

std::pair<double, double> Group::computeSpeedDirSimilitude() const {
  const Spreads spreads = m_members.meanSpreads();
  return {spreads.speed, spreads.direction};
}

double Group::distance(const QSharedPointer<MetaLPO>& mobile, int frame) const {
  int groupFrame = frame - 1;
  BoundingBox3D box = bbox3D(groupFrame);
  while (std::abs(box.b2 - box.b5) < emptyHeight && m_startFrame < groupFrame) {
    --groupFrame;
    box = bbox3D(groupFrame);
  }
  const auto& observation = mobile->observation();
  return Util::distance3Dsmart(observation.getBoundingBox3D(), observation.getBoundingBox2D(), box,
                               bbox2D(groupFrame));
}
