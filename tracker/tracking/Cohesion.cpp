#include "tracker/tracking/Cohesion.h"

#include "tracker/geometry/Util.h"
#include "tracker/tracking/Group.h"

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
