#include <cmath>
#include <limits>

#include "Diagnostics.h"
#include "GroupTracker.h"
#include "MobileTypes.h"
#include "Util.h"

int GroupTracker::trackGroups() {
  if (static_cast<int>(processedFrame()) < 1) {
    closeFrame();
    return 0;
  }
  printProcessedMobiles();
  updateGroups();
  pairFreeMobiles();
  detectMerge();
  detectSplit();
  printGroups();
  closeFrame();
  return 0;
}

void GroupTracker::printProcessedMobiles() {
  if (!Diagnostics::enabled()) {
    return;
  }
  const MobileList& mobiles = mobilesAt(processedFrame());
  Diagnostics::print("mobiles at processed frame {}:\n", static_cast<int>(processedFrame()));
  for (const auto& mobile : mobiles) {
    Diagnostics::print("{} ({}), ", mobile->getIdent(), typeOf(*mobile).nameOf());
  }
  Diagnostics::print("\n");
  for (const auto& a : mobiles) {
    for (const auto& b : mobiles) {
      if (a->getIdent() != b->getIdent()) {
        Diagnostics::print("distance between {} and {} = {:f}\n", a->getIdent(), b->getIdent(),
                           Util::distance3D(a->observation().getBoundingBox3D(),
                                            b->observation().getBoundingBox3D()));
      }
    }
  }
  Diagnostics::print("\n");
}

void GroupTracker::pairFreeMobiles() {
  const MobileList& mobiles = mobilesAt(processedFrame());
  for (auto i = mobiles.begin(); i != mobiles.end(); ++i) {
    const ObjectType type = typeOf(**i);
    if (type.isNoise()) {
      continue;
    }
    const unsigned int home = groupId((*i)->getPhysicalObject());
    Diagnostics::print("i_id = {}, groupId(i_id) = {}\n", (*i)->getIdent(), static_cast<int>(home));
    if (home == none) {
      Diagnostics::print("i_id = {}\n", (*i)->getIdent());
      if (isGroupOrCrowd(type)) {
        processGroupMobile(*i);
      }
    }
    pairWithFollowing(i, mobiles);
  }
}

void GroupTracker::pairWithFollowing(MobileList::const_iterator first, const MobileList& mobiles) {
  const auto& a = *first;
  for (auto other = first; other != mobiles.end(); ++other) {
    const auto& b = *other;
    if (typeOf(*b).isNoise() || groupId(b->getPhysicalObject()) != none) {
      continue;
    }
    Diagnostics::print("i_id = {}, j_id = {}\n", a->getIdent(), b->getIdent());
    if (a->getIdent() == b->getIdent()) {
      continue;
    }
    if (const auto created = tryPair(a, b)) {
      adopt(created);
    }
  }
}

void GroupTracker::adopt(const QSharedPointer<Group>& group) {
  addGroup(group);
  for (const auto& [id, mobile] : group->getMobiles()) {
    if (const auto remembered = node(id)) {
      remembered->setGroupId(group->getId());
    }
  }
}

QSharedPointer<Group> GroupTracker::tryPair(const QSharedPointer<MetaLPO>& a,
                                            const QSharedPointer<MetaLPO>& b) {
  const double distance =
      Util::distance3D(a->observation().getPosition(), b->observation().getPosition());
  if (distance > maxDistGroupCreation) {
    return {};
  }
  const unsigned int homeA = groupId(a->getPhysicalObject());
  const unsigned int homeB = groupId(b->getPhysicalObject());
  if ((homeA != none && !isGroupOrCrowd(typeOf(*a))) ||
      (homeB != none && !isGroupOrCrowd(typeOf(*b)))) {
    return {};
  }
  if (homeA != none) {
    const auto home = group(homeA);
    if (home && Group::coherenceThreshold > home->groupCoherence(b)) {
      addMobileToGroup(static_cast<int>(homeA), b);
    }
    return {};
  }
  auto pair = QSharedPointer<Group>::create(a);
  const double coherence = pair->groupCoherence(b);
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
  if (!isGroupOrCrowd(typeOf(*mobile))) {
    return false;
  }
  return joinAncestorGroup(mobile) || foundFromAncestry(mobile);
}

bool GroupTracker::joinAncestorGroup(const QSharedPointer<MetaLPO>& mobile) {
  const int id = mobile->getIdent();
  Diagnostics::print("considering mobile labeled as group with id={}\n", id);
  const unsigned int ancestral =
      ancestorGroup(static_cast<unsigned int>(id), static_cast<int>(Util::temporalWinSize));
  unsigned int home = groupId(mobile->getBestFatherId());
  Diagnostics::print("this mobile has a best father with id={}\n", mobile->getBestFatherId());
  Diagnostics::print("and groupId={}\n", static_cast<int>(home));
  if (home == none) {
    home = ancestral;
  }
  const auto target = group(home);
  if (home == none || !target) {
    return false;
  }
  const int homeId = static_cast<int>(home);
  Diagnostics::print("mobile {} has ancestor in group {}\n", id, homeId);
  const double distance = target->distance(mobile, static_cast<int>(mobile->getFrame()));
  Diagnostics::print("distance from {} to group {} = {:f}\n", id, homeId, distance);
  if (!(maxDistGroupUpdate > distance)) {
    Diagnostics::print("too far, giving up.\n");
    return false;
  }
  const double coherence = target->groupCoherence(mobile);
  if (!(Group::coherenceThreshold > coherence)) {
    // The line stays open on purpose: what is decided next continues it.
    Diagnostics::print(
        "not adding mobile {} to group {} because of an ancestor because of coherence {:f}", id,
        homeId, coherence);
    return false;
  }
  addMobileToGroup(homeId, mobile);
  Diagnostics::print("added mobile {} to group {} because of an ancestor with coherence {:f}\n", id,
                     homeId, coherence);
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
  const ObjectType type = typeOf(*ancestor);
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
    const double coherence = trial.groupCoherence(other);
    if (Group::coherenceThreshold > coherence) {
      coherences.push_back(coherence);
    }
  }
}

unsigned int GroupTracker::probableGroupRaw(const QSharedPointer<MetaLPO>& mobile) const {
  if (const unsigned int home = groupId(mobile->getBestFatherId()); home != none) {
    return home;
  }
  const auto& links = mobile->getFatherLinks();
  for (auto link = links.rbegin(); link != links.rend(); ++link) {
    if (const auto father = (*link)->getFather()) {
      if (const unsigned int home = groupId(father->getIdent()); home != none) {
        return home;
      }
    }
    const bool isFirst = std::next(link) == links.rend();
    if (isFirst || !((*link)->getReliability() > minReliabilityOthers)) {
      break;
    }
  }
  return none;
}

unsigned int GroupTracker::probableGroup(const QSharedPointer<MetaLPO>& mobile) const {
  const unsigned int home = groupId(mobile->getBestFatherId());
  if (home != none && mobile->getBestFatherReliability() > minReliabilityBest) {
    return home;
  }
  for (const auto& [ident, reliability] : mobile->chain()) {
    if (reliability > minReliabilityOthers) {
      if (const unsigned int found = groupId(ident); found != none) {
        return found;
      }
    }
  }
  if (!mobile->chain().empty()) {
    return none;
  }
  const auto& links = mobile->getFatherLinks();
  for (auto link = links.rbegin(); link != links.rend(); ++link) {
    if (!((*link)->getReliability() > 0.5 * minReliabilityOthers)) {
      return none;
    }
    if (const auto father = (*link)->getFather()) {
      if (const unsigned int found = groupId(father->getIdent()); found != none) {
        return found;
      }
    }
  }
  return none;
}
