#include "host/grouping/GroupMeetings.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double apart = 3.0;       // metres from which a group comes that meets another
constexpr double inReach = 1.5;     // metres between the nearest two of groups that meet
constexpr double sideBySide = 1.0;  // metres between these two from then on
constexpr double alike = 0.7;       // m/s, most that velocities differ by, people find their place
constexpr double steady = 0.67;     // metres, most that a group shifts as the other sees it
constexpr double memory = 10.0;     // seconds after which the evidence speaks for itself
constexpr double partedDistance = 4.0;  // metres
constexpr double partedShift = 2.0;     // metres

}  // namespace

void GroupMeetings::watch(const TickBeliefs& tick, const GroupsOfPeople& groupOf,
                          const LatestOf& latestOf) {
  dropParted(tick, latestOf);
  for (const auto& [groups, encounter] : encountersAt(tick, groupOf, latestOf)) {
    if (!isMeeting(encounter)) {
      continue;
    }
    for (const PersonPair& pair : encounter.pairs) {
      m_metUntil[pair] = tick.time + memory;
    }
  }
}

/// Of the groups of which two persons are in reach of each other.
GroupMeetings::Encounters GroupMeetings::encountersAt(const TickBeliefs& tick,
                                                      const GroupsOfPeople& groupOf,
                                                      const LatestOf& latestOf) {
  const auto groupsOf = [&groupOf](const PairBelief& pair) {
    return GroupPair(std::minmax(groupOf[pair.indexOfA], groupOf[pair.indexOfB]));
  };
  const auto areOfTwo = [](const GroupPair& groups) {
    return groups.first != 0 && groups.first != groups.second;
  };
  Encounters encounters;
  for (const PairBelief& pair : tick.pairs) {
    if (pair.distance < inReach && areOfTwo(groupsOf(pair))) {
      encounters.try_emplace(groupsOf(pair));
    }
  }
  if (encounters.empty()) {
    return encounters;
  }
  for (const PairBelief& pair : tick.pairs) {
    const auto encounter =
        areOfTwo(groupsOf(pair)) ? encounters.find(groupsOf(pair)) : encounters.end();
    const auto latest = encounter == encounters.end() ? std::nullopt : latestOf(pair.a, pair.b);
    if (latest) {
      const bool isTurned = groupOf[pair.indexOfA] > groupOf[pair.indexOfB];
      add(pair, *latest, isTurned, encounter->second);
    }
  }
  for (auto& [groups, encounter] : encounters) {
    const auto count = static_cast<double>(encounter.pairs.size());
    encounter.velocityDifference /= count;
    encounter.shift *= 1.0 / count;
  }
  return encounters;
}

void GroupMeetings::add(const PairBelief& pair, const LatestMoments& latest, bool isTurned,
                        Encounter& encounter) {
  encounter.nearestLatest = std::min(encounter.nearestLatest, latest.distance);
  encounter.cameFrom = std::min(encounter.cameFrom, latest.cameFrom);
  encounter.velocityDifference += latest.velocityDifference;
  encounter.shift += isTurned ? -latest.shift : latest.shift;
  encounter.pairs.emplace_back(pair.a, pair.b);
}

bool GroupMeetings::isMeeting(const Encounter& encounter) {
  return encounter.cameFrom > apart && encounter.nearestLatest < sideBySide &&
         encounter.velocityDifference < alike &&
         std::hypot(encounter.shift.x, encounter.shift.y) < steady;
}

void GroupMeetings::dropParted(const TickBeliefs& tick, const LatestOf& latestOf) {
  std::erase_if(m_metUntil, [&tick](const auto& met) { return tick.time > met.second; });
  if (m_metUntil.empty()) {
    return;
  }
  for (const PairBelief& pair : tick.pairs) {
    const auto met = m_metUntil.find({pair.a, pair.b});
    if (met == m_metUntil.end()) {
      continue;
    }
    const auto latest = latestOf(pair.a, pair.b);
    if (!latest || latest->distance > partedDistance ||
        std::hypot(latest->shift.x, latest->shift.y) > partedShift) {
      m_metUntil.erase(met);
    }
  }
}

}  // namespace grouptracker
