#pragma once

#include "host/grouping/FrameGroups.h"
#include "host/grouping/GroupMeetings.h"
#include "host/grouping/GroupPartings.h"
#include "host/grouping/PairEvidence.h"
#include "host/grouping/Partition.h"

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace grouptracker {

/// A group at one tick.
struct TickGroup {
  GroupId id = 0;
  std::vector<PersonId> members;  ///< in view, ascending, at least two
  double confidence = 0.0;        ///< 0 to 1
  std::vector<GroupId> from;      ///< as in `FoundGroup`
};

/// Makes groups out of what is believed of pairs, and follows each of them over time: a group is
/// known by its members. A pause of up to 15 s, because people are out of view or seem apart, does
/// not end it. Who belongs to a group tends to stay in it; who left it is not taken back at once; a
/// new group has to be believed for a moment before it counts, unless it splits off another.
/// A split is told when `GroupPartings` says so. Where two groups become one, which `GroupMeetings`
/// tells early, the one with more members there goes on and the other has ended: its id never comes
/// back, also when the people part again.
class GroupIdentity {
 public:
  /// `lookAhead`: seconds of the future that the evidence sees.
  explicit GroupIdentity(double lookAhead) : m_partings(lookAhead) {}

  /// The groups at the next tick, in ascending order of ids.
  std::vector<TickGroup> next(const TickBeliefs& tick, const LatestOf& latestOf);
  /// Whether the group goes on or may still come back.
  bool remembers(GroupId id) const { return m_groups.contains(id); }

 private:
  struct Group {
    double born = 0.0;      ///< seconds
    double lastSeen = 0.0;  ///< when it last had two members, seconds
    bool isNew = true;      ///< until it first had members
    bool hasEnded = false;  ///< in another group
    std::size_t lastSize = 0;
    std::map<PersonId, double> memberUntil;  ///< seconds
  };
  using PersonPair = std::pair<PersonId, PersonId>;
  using GroupsOfPeople = GroupMeetings::GroupsOfPeople;

  GroupsOfPeople groupsOf(const std::vector<PersonAt>& people) const;
  bool isReal(GroupId id) const;
  void watchMeetings(const TickBeliefs& tick, GroupsOfPeople groupOf, const LatestOf& latestOf);
  Gatherings gather(const TickBeliefs& tick, const GroupsOfPeople& groupOf) const;
  std::vector<PersonLink> linksOf(const TickBeliefs& tick, const GroupsOfPeople& groupOf) const;
  void inherit(Gatherings& gatherings);
  std::optional<GroupId> remembered(const Gathering& gathering) const;
  bool hasWaited(const Gathering& gathering);
  GroupId found();
  void nameTheRest(Gatherings& gatherings);
  std::vector<PersonId> membersOf(const Gathering& gathering) const;
  void explain(const Gatherings& gatherings, std::vector<TickGroup>& groups);
  std::vector<GroupId> originOf(const Gathering& gathering, const std::set<GroupId>& present) const;
  void endAbsorbed(const Gathering& gathering, const std::set<GroupId>& present);
  void dismiss(const TickBeliefs& tick, const std::vector<TickGroup>& groups);
  void admit(const std::vector<TickGroup>& groups);
  void forget();

  GroupMeetings m_meetings;
  GroupPartings m_partings;
  double m_time = 0.0;  ///< of the tick, seconds
  GroupId m_lastId = 0;
  std::map<GroupId, Group> m_groups;       ///< that go on or may come back
  std::map<PersonId, GroupId> m_memberOf;  ///< also of those who are out of view for a moment
  std::set<GroupId> m_taken;               ///< ids in use at this tick
  std::map<PersonPair, double> m_waiting;  ///< since when two persons could be a new group, seconds
  std::map<PersonPair, double> m_waitingNext;             ///< the same for the next tick
  std::map<std::pair<PersonId, GroupId>, double> m_left;  ///< when somebody left a group, seconds
};

}  // namespace grouptracker
