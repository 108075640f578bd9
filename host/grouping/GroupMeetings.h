#pragma once

#include "host/grouping/FrameGroups.h"
#include "host/grouping/PairEvidence.h"

#include <map>
#include <utility>
#include <vector>

namespace grouptracker {

/// Notices when two groups become one. The evidence about a pair looks back for seconds, and so
/// says for seconds that the pair came from afar. That two strangers go along for a moment is
/// common; that two whole groups come near each other from afar and go or stand on together is not,
/// so that the latest moments are enough to tell it.
class GroupMeetings {
 public:
  /// For each person of a tick, in their order, the group; 0 for none.
  using GroupsOfPeople = std::vector<GroupId>;

  /// Looks at all groups of a tick.
  void watch(const TickBeliefs& tick, const GroupsOfPeople& groupOf, const LatestOf& latestOf);
  /// Whether two persons, the lower id first, are together because their groups have met.
  bool haveMet(PersonId a, PersonId b) const {
    return !m_metUntil.empty() && m_metUntil.contains({a, b});
  }

 private:
  using GroupPair = std::pair<GroupId, GroupId>;     ///< the lower id first
  using PersonPair = std::pair<PersonId, PersonId>;  ///< the lower id first

  /// Two groups at one tick.
  struct Encounter {
    std::vector<PersonPair> pairs;    ///< one of each group
    double nearestLatest = farAway;   ///< mean of the latest moments, of the nearest two, metres
    double cameFrom = farAway;        ///< distance of the nearest two before, metres
    double velocityDifference = 0.0;  ///< mean of the pairs in the latest moments, m/s
    cv::Point2d shift;                ///< of the groups as wholes in these, metres
  };
  using Encounters = std::map<GroupPair, Encounter>;
  static constexpr double farAway = 100.0;  // metres

  static Encounters encountersAt(const TickBeliefs& tick, const GroupsOfPeople& groupOf,
                                 const LatestOf& latestOf);
  static void add(const PairBelief& pair, const LatestMoments& latest, bool isTurned,
                  Encounter& encounter);
  static bool isMeeting(const Encounter& encounter);
  void dropParted(const TickBeliefs& tick, const LatestOf& latestOf);

  std::map<PersonPair, double> m_metUntil;  ///< seconds
};

}  // namespace grouptracker
