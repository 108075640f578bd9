#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/ObjectType.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/GroupTracker.h"

#include <cmath>

bool GroupTracker::isTooFarForPair(const cv::Point3f& a, const cv::Point3f& b) {
  return Util::distance3D(a, b) > maxDistGroupCreation;
}

QSharedPointer<Group> GroupTracker::tryPair(const QSharedPointer<MetaLPO>& a,
                                            const QSharedPointer<MetaLPO>& b) {
  if (isTooFarForPair(a->observation().getPosition(), b->observation().getPosition())) {
    return {};
  }
  const int homeA = homeOf(*a);
  const int homeB = homeOf(*b);
  if ((homeA != noId && !isGroupOrCrowd(a->getType())) ||
      (homeB != noId && !isGroupOrCrowd(b->getType()))) {
    return {};
  }
  if (homeA != noId) {
    const auto home = m_groups.value(homeA);
    if (home && Group::coherenceThreshold > home->groupCoherence(b, Group::coherenceThreshold)) {
      addMobileToGroup(homeA, b);
    }
    return {};
  }
  auto pair = QSharedPointer<Group>::create(a);
  const double coherence = pair->groupCoherence(b, Group::coherenceThreshold);
  if (!(Group::coherenceThreshold > coherence)) {
    Group::forgetLastId();
    return {};
  }
  pair->addMobile(b);
  Diagnostics::print("created group {} from pair {} and {} with group coherence {:f}\n",
                     pair->getId(), a->getIdent(), b->getIdent(), coherence);
  Diagnostics::print("properties: {:f}, {:f}, {:f} (dist, speed, dir)\n", pair->getAvgIntraDist(),
                     pair->getSpeedSimilitude(), pair->getDirSimilitude());
  return pair;
}

bool GroupTracker::processGroupMobile(const QSharedPointer<MetaLPO>& mobile) {
  if (!isGroupOrCrowd(mobile->getType())) {
    return false;
  }
  return joinAncestorGroup(mobile) || foundFromAncestry(mobile);
}

bool GroupTracker::joinAncestorGroup(const QSharedPointer<MetaLPO>& mobile) {
  const int id = mobile->getIdent();
  Diagnostics::print("considering mobile labeled as group with id={}\n", id);
  int home = homeOf(mobile->getBestFatherId());
  Diagnostics::print("this mobile has a best father with id={}\n", mobile->getBestFatherId());
  Diagnostics::print("and groupId={}\n", home);
  if (home == noId) {
    home = ancestralHome(id, static_cast<int>(Util::temporalWinSize));
  }
  const auto target = m_groups.value(home);
  if (home == noId || !target) {
    return false;
  }
  Diagnostics::print("mobile {} has ancestor in group {}\n", id, home);
  const double distance = target->distance(mobile, static_cast<int>(mobile->getFrame()));
  Diagnostics::print("distance from {} to group {} = {:f}\n", id, home, distance);
  if (!(maxDistGroupUpdate > distance)) {
    Diagnostics::print("too far, giving up.\n");
    return false;
  }
  const double coherence = target->groupCoherence(mobile);
  if (!(Group::coherenceThreshold > coherence)) {
    // The line stays open on purpose: what is decided next continues it.
    Diagnostics::print(
        "not adding mobile {} to group {} because of an ancestor because of coherence {:f}", id,
        home, coherence);
    return false;
  }
  addMobileToGroup(home, mobile);
  Diagnostics::print("added mobile {} to group {} because of an ancestor with coherence {:f}\n", id,
                     home, coherence);
  return true;
}

bool GroupTracker::foundFromAncestry(const QSharedPointer<MetaLPO>& mobile) {
  auto ancestor = mobile->ancestor();
  if (!ancestor) {
    return false;
  }
  int generations = 2;
  double sum = 0.0;
  std::list<double> coherences;
  {
    Group trial(mobile);
    // The coherence of the mobile alone enters the sum without a weight.
    sum = trial.groupCoherence();
    addAncestor(trial, ancestor, coherences);
    for (ancestor = ancestor->ancestor(); ancestor; ancestor = ancestor->ancestor()) {
      ++generations;
      addAncestor(trial, ancestor, coherences);
    }
  }
  Group::forgetLastId();
  double weights = 0.0;
  int k = 0;
  for (const double coherence : coherences) {
    const double weight = std::exp(-static_cast<double>(k) / generations) * 10.0 / generations;
    weights += weight;
    sum += weight * coherence;
    ++k;
  }
  const double finalCoherence = 10.0 * sum / weights;
  Diagnostics::print("final coherence for creating group from group mobile {} (n={}) = {:f}\n",
                     mobile->getIdent(), generations, finalCoherence);
  if (!(Group::coherenceThreshold > finalCoherence)) {
    return false;
  }
  createGroup(mobile);
  return true;
}

void GroupTracker::addAncestor(Group& trial, const QSharedPointer<MetaLPO>& ancestor,
                               std::list<double>& coherences) {
  const ObjectType type = ancestor->getType();
  if (isGroupOrCrowd(type)) {
    trial.addMobile(ancestor);
    trial.computeBestMobile(static_cast<int>(ancestor->getFrame()));
    coherences.push_back(trial.groupCoherence());
    return;
  }
  if (type.isNoise()) {
    return;
  }
  trial.addMobile(ancestor);
  for (const auto& other : mobilesAt(ancestor->getFrame())) {
    if (other->getIdent() == ancestor->getIdent()) {
      continue;
    }
    const double coherence = trial.groupCoherence(other, Group::coherenceThreshold);
    if (Group::coherenceThreshold > coherence) {
      coherences.push_back(coherence);
    }
  }
}
