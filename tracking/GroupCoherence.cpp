#include <cmath>
#include <map>

#include "Group.h"
#include "Util.h"

namespace {

constexpr double farFromRepresentative = 3.0;  // metres
constexpr double incoherent = 1000.0;          // beyond every sensible threshold
constexpr double emptyHeight = 0.001;          // metres; a lower 3D box holds nobody

// The spread of some members' speeds and directions about their means, times the root of their
// number: what is left is to divide by a count under the root.
struct Deviations {
  double speed = 0.0;
  double direction = 0.0;
};

Deviations squaredDeviations(const std::vector<MetaLPO*>& members) {
  const auto count = members.size();
  std::vector<double> speeds;
  std::vector<cv::Point3f> directions;
  double speedSum = 0.0;
  cv::Point3f directionSum(0.0F, 0.0F, 0.0F);
  for (MetaLPO* member : members) {
    speeds.push_back(member->computeSpeed());
    directions.push_back(member->computeDirection());
    speedSum += speeds.back();
    directionSum += directions.back();
  }
  const double meanSpeed = speedSum / static_cast<double>(count);
  const auto divisor = static_cast<float>(count);
  const cv::Point3f meanDirection(directionSum.x / divisor, directionSum.y / divisor,
                                  directionSum.z / divisor);
  Deviations sums;
  for (std::size_t i = 0; i < count; ++i) {
    const double speed = speeds[i] - meanSpeed;
    sums.speed += speed * speed;
    const cv::Point3f direction = directions[i] - meanDirection;
    const double dx = direction.x;
    const double dy = direction.y;
    const double dz = direction.z;
    sums.direction += dx * dx + dy * dy + dz * dz;
  }
  return sums;
}

Group::Spreads spreads(const std::vector<MetaLPO*>& members) {
  const Deviations sums = squaredDeviations(members);
  const auto count = static_cast<double>(members.size());
  return {std::sqrt(sums.speed / count), std::sqrt(sums.direction / 3 / count)};
}

}  // namespace

double Group::groupCoherence() const {
  const double distance = static_cast<double>(distWeight) * m_avgIntraDist;
  const double speed = static_cast<double>(speedSimWeight) * m_speedSimilitude;
  const double direction = static_cast<double>(dirSimWeight) * m_dirSimilitude;
  const unsigned int weights = distWeight + speedSimWeight + dirSimWeight;
  return (distance + speed + direction) / static_cast<double>(weights);
}

double Group::groupCoherence(const QSharedPointer<kelDataLinkedPhysicalObject>& object,
                             unsigned int frame) {
  // An id of 0 counts as no representative, even when a mobile has it.
  if (m_bestMobileId != 0) {
    const auto representative = m_mobiles.find(m_bestMobileId);
    if (representative != m_mobiles.end() &&
        Util::distance3D(object->getPhysicalObject()->getBoundingBox3D(),
                         representative->second->observation().getBoundingBox3D()) >
            farFromRepresentative) {
      return incoherent;
    }
  }
  const int bestMobileId = m_bestMobileId;
  const int numMobiles = m_numMobiles;
  const double avgIntraDist = m_avgIntraDist;
  const double speedSimilitude = m_speedSimilitude;
  const double dirSimilitude = m_dirSimilitude;
  addMobile(object, static_cast<int>(frame));
  const double coherence = groupCoherence();
  removeMobile(static_cast<int>(object->getIdent()));
  m_bestMobileId = bestMobileId;
  m_numMobiles = numMobiles;
  m_avgIntraDist = avgIntraDist;
  m_speedSimilitude = speedSimilitude;
  m_dirSimilitude = dirSimilitude;
  return coherence;
}

QSharedPointer<MetaLPO> Group::memberOr(int id, const QSharedPointer<MetaLPO>& fallback) const {
  const auto member = m_mobiles.find(id);
  return member == m_mobiles.end() ? fallback : member->second;
}

double Group::groupCoherence(const QSharedPointer<MetaLPO>& mobile) const {
  Group trial(*this);
  const int oldRepresentativeId = trial.m_bestMobileId;
  trial.addMobile(mobile);
  trial.computeBestMobile(static_cast<int>(mobile->getFrame()));
  const double firstCoherence = trial.groupCoherence();

  const auto representative = trial.memberOr(trial.m_bestMobileId, mobile);
  const bool pairWithItself = representative->getIdent() == mobile->getIdent() &&
                              trial.numMobilesAtFrame(mobile->getFrame()) == 2;
  const auto companion = pairWithItself ? trial.memberOr(oldRepresentativeId, mobile) : mobile;
  return walkForward(trial, representative, companion, firstCoherence);
}

double Group::walkForward(Group& trial, QSharedPointer<MetaLPO> a, QSharedPointer<MetaLPO> b,
                          double firstCoherence) {
  std::vector<double> coherences;
  while (true) {
    trial.addMobile(a);
    if (b->getIdent() != a->getIdent()) {
      trial.addMobile(b);
    }
    trial.computeBestMobile(static_cast<int>(b->getFrame()));
    coherences.push_back(trial.groupCoherence());
    b = b->descendant();
    if (!b) {
      break;
    }
    a = a->descendant();
    if (!a) {
      break;
    }
  }
  const auto decay = static_cast<double>(coherences.size() + 1);
  // The first coherence enters without a weight and is not counted among the weights.
  double sum = firstCoherence;
  double weights = 0.0;
  for (std::size_t i = 0; i < coherences.size(); ++i) {
    const double weight = 10.0 * std::exp(-static_cast<double>(i) / decay) / decay;
    sum += weight * coherences[i];
    weights += weight;
  }
  return sum / weights * 10.0;
}

void Group::updateProperties(unsigned int frame) {
  updateAvgIntraDist(frame);
  std::tie(m_speedSimilitude, m_dirSimilitude) = computeSpeedDirSimilitude();
}

void Group::updateAvgIntraDist(unsigned int frame) {
  const double earlierFrames =
      static_cast<unsigned int>(countDistinctFrames()) - 1U;  // wraps for an empty group
  const auto members = membersAt(static_cast<int>(frame));
  if (members.size() == 1) {
    const auto& single = members.front();
    auto lower = m_mobiles.lower_bound(single->getIdent());
    if (lower == m_mobiles.begin() || std::prev(lower)->first < 0) {
      return;
    }
    const double distance =
        Util::distance3D(std::prev(lower)->second->observation().getBoundingBox3D(),
                         single->observation().getBoundingBox3D());
    m_avgIntraDist = (earlierFrames * m_closedAvgIntraDist + 2 * distance) / (earlierFrames + 2.0);
    return;
  }
  double sum = 0.0;
  int count = 0;
  for (std::size_t i = 0; i < members.size(); ++i) {
    for (std::size_t j = i + 1; j < members.size(); ++j) {
      sum += Util::distance3D(members[i]->observation().getBoundingBox3D(),
                              members[j]->observation().getBoundingBox3D());
      ++count;
    }
  }
  if (count != 0) {
    m_avgIntraDist = (earlierFrames * m_closedAvgIntraDist + sum / count) / (earlierFrames + 1.0);
  }
}

Group::Spreads Group::computeSpeedDirSimilitude() const {
  if (m_mobiles.empty()) {
    return {0.0, 0.0};
  }
  std::map<unsigned int, std::vector<MetaLPO*>> membersByFrame;
  std::vector<MetaLPO*> all;
  bool severalAtOnce = false;
  for (const auto& [id, mobile] : m_mobiles) {
    auto& members = membersByFrame[mobile->getFrame()];
    members.push_back(mobile.data());
    all.push_back(mobile.data());
    severalAtOnce = severalAtOnce || members.size() > 1;
  }
  if (!severalAtOnce) {
    return spreads(all);
  }
  double speed = 0.0;
  double direction = 0.0;
  for (const auto& [frame, members] : membersByFrame) {
    const auto [frameSpeed, frameDirection] = spreads(members);
    speed += frameSpeed;
    direction += frameDirection;
  }
  const auto frames = static_cast<double>(membersByFrame.size());
  return {speed / frames, direction / frames};
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
