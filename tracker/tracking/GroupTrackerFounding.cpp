#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/GroupTracker.h"
#include "tracker/tracking/MobileTypes.h"

#include <algorithm>
#include <cmath>
#include <deque>

namespace {

bool isTooFarForPair(const cv::Point3f& a, const cv::Point3f& b) {
  return Util::distance3D(a, b) > GroupTracker::maxDistGroupCreation;
}

}  // namespace

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
    Diagnostics::write(mobile->getIdent(), " (", mobile->getType().nameOf(), "), ");
  }
  Diagnostics::print("\n");
  m_distanceLines.print(mobiles);
  Diagnostics::print("\n");
}

/// A mobile of the processed frame in the search for pairs. Its group is the one under its id, so
/// that of a later node when the id was declared again.
struct GroupTracker::PairMember {
  PairMember(std::size_t placeInFrame, const QSharedPointer<MetaLPO>& mobile,
             const MetaLPO* latestNode)
      : place(placeInFrame),
        node(mobile),
        latest(latestNode),
        ident(mobile->getIdent()),
        position(mobile->observation().getPosition()),
        isNoise(mobile->getType().isNoise()),
        isSeveral(isGroupOrCrowd(mobile->getType())) {}

  int home() const { return latest == nullptr ? MetaLPO::noId : latest->getGroupId(); }
  bool isFree() const { return home() == MetaLPO::noId; }
  /// Whether a group can be made with or grown through this mobile.
  bool mayPair() const { return isFree() || isSeveral; }

  std::size_t place;
  const QSharedPointer<MetaLPO>& node;
  const MetaLPO* latest;
  int ident;
  cv::Point3f position;
  bool isNoise;
  bool isSeveral;
};

void GroupTracker::pairFreeMobiles() {
  std::deque<PairMember> members;
  for (const auto& mobile : mobilesAt(processedFrame())) {
    members.emplace_back(members.size(), mobile, m_mobiles.node(mobile->getIdent()));
  }
  // Those still to be paired; whoever found a group leaves, so that a crowd of groups costs little.
  std::deque<PairMember*> free;
  for (auto& member : members) {
    if (!member.isNoise && member.isFree()) {
      free.push_back(&member);
    }
  }
  for (const auto& member : members) {
    if (member.isNoise) {
      continue;
    }
    Diagnostics::write("i_id = ", member.ident, ", groupId(i_id) = ", member.home(), "\n");
    if (member.isFree()) {
      Diagnostics::write("i_id = ", member.ident, "\n");
      if (member.isSeveral) {
        processGroupMobile(member.node);
      }
    }
    std::erase_if(free, [&](const PairMember* other) {
      return other->place < member.place || !other->isFree();
    });
    pairWithFree(member, free);
  }
}

void GroupTracker::pairWithFree(const PairMember& first, const std::deque<PairMember*>& free) {
  for (const PairMember* second : free) {
    if (!second->isFree()) {
      continue;
    }
    Diagnostics::write("i_id = ", first.ident, ", j_id = ", second->ident, "\n");
    if (first.ident == second->ident || !first.mayPair() ||
        isTooFarForPair(first.position, second->position)) {
      continue;
    }
    if (const auto created = tryPair(first.node, second->node)) {
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
  if (isTooFarForPair(a->observation().getPosition(), b->observation().getPosition())) {
    return {};
  }
  const unsigned int homeA = groupId(a->getPhysicalObject());
  const unsigned int homeB = groupId(b->getPhysicalObject());
  if ((homeA != none && !isGroupOrCrowd(a->getType())) ||
      (homeB != none && !isGroupOrCrowd(b->getType()))) {
    return {};
  }
  if (homeA != none) {
    const auto home = group(homeA);
    if (home && Group::coherenceThreshold > home->groupCoherence(b, Group::coherenceThreshold)) {
      addMobileToGroup(static_cast<int>(homeA), b);
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

unsigned int GroupTracker::probableGroupRaw(const QSharedPointer<MetaLPO>& mobile) const {
  if (const unsigned int home = groupId(mobile->getBestFatherId()); home != none) {
    return home;
  }
  const auto& links = mobile->getFatherLinks();
  for (auto link = links.rbegin(); link != links.rend(); ++link) {
    if (const MetaLPO* father = link->fatherNode()) {
      if (const unsigned int home = groupIdOf(*father); home != none) {
        return home;
      }
    }
    const bool isFirst = std::next(link) == links.rend();
    if (isFirst || !(link->getReliability() > minReliabilityOthers)) {
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
  for (const auto& entry : mobile->chain()) {
    if (entry.reliability > minReliabilityOthers) {
      if (const unsigned int found = groupId(entry.ident); found != none) {
        return found;
      }
    }
  }
  if (!mobile->chain().empty()) {
    return none;
  }
  const auto& links = mobile->getFatherLinks();
  for (auto link = links.rbegin(); link != links.rend(); ++link) {
    if (!(link->getReliability() > 0.5 * minReliabilityOthers)) {
      return none;
    }
    if (const MetaLPO* father = link->fatherNode()) {
      if (const unsigned int found = groupIdOf(*father); found != none) {
        return found;
      }
    }
  }
  return none;
}
