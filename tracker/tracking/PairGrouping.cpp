#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/ObjectType.h"
#include "tracker/tracking/GroupTracker.h"
#include "tracker/tracking/Grouping.h"

namespace {

void adopt(GroupTracker& tracker, const QSharedPointer<Group>& group) {
  tracker.addGroup(group);
  for (const auto& [id, mobile] : group->getMobiles()) {
    if (const auto remembered = tracker.node(id)) {
      remembered->setGroupId(group->getId());
    }
  }
}

}  // namespace

void PairGrouping::beforeJoining(GroupTracker& tracker) {
  if (!Diagnostics::enabled()) {
    return;
  }
  const auto& mobiles = tracker.processedMobiles();
  Diagnostics::print("mobiles at processed frame {}:\n", tracker.processedFrame());
  for (const auto& mobile : mobiles) {
    Diagnostics::write(mobile->getIdent(), " (", mobile->getType().nameOf(), "), ");
  }
  Diagnostics::print("\n");
  m_lines.print(mobiles);
  Diagnostics::print("\n");
}

/// A mobile of the processed frame in the search for pairs. Its group is the one under its id, so
/// that of a later node when the id was declared again.
struct PairGrouping::Member {
  Member(std::size_t placeInFrame, const QSharedPointer<MetaLPO>& mobile, const MetaLPO* latestNode)
      : place(placeInFrame),
        node(mobile),
        latest(latestNode),
        ident(mobile->getIdent()),
        position(mobile->observation().getPosition()),
        isNoise(mobile->getType().isNoise()),
        isSeveral(isGroupOrCrowd(mobile->getType())) {}

  int home() const { return latest == nullptr ? noId : latest->getGroupId(); }
  bool isFree() const { return home() == noId; }
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

void PairGrouping::afterJoining(GroupTracker& tracker) {
  // Deques, see the seekers of `GroupTracker`.
  std::deque<Member> members;
  for (const auto& mobile : tracker.processedMobiles()) {
    members.emplace_back(members.size(), mobile, tracker.latestNode(mobile->getIdent()));
  }
  // Those still to be paired; whoever found a group leaves, so that a crowd of groups costs little.
  std::deque<Member*> free;
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
        tracker.processGroupMobile(member.node);
      }
    }
    std::erase_if(
        free, [&](const Member* other) { return other->place < member.place || !other->isFree(); });
    pairWithFree(tracker, member, free);
  }
}

void PairGrouping::pairWithFree(GroupTracker& tracker, const Member& first,
                                const std::deque<Member*>& free) {
  for (const Member* second : free) {
    if (!second->isFree()) {
      continue;
    }
    Diagnostics::write("i_id = ", first.ident, ", j_id = ", second->ident, "\n");
    if (first.ident == second->ident || !first.mayPair() ||
        GroupTracker::isTooFarForPair(first.position, second->position)) {
      continue;
    }
    if (const auto created = tracker.tryPair(first.node, second->node)) {
      adopt(tracker, created);
    }
  }
}
