#include "host/grouping/GroupMeetings.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double apart = 3.0;       // metres from which a group comes that meets another
constexpr double inReach = 1.5;     // metres between the nearest two of groups that meet
constexpr double sideBySide = 1.0;  // metres between these two from then on
constexpr double alike = 0.7;       // m/s, most that velocities differ by, people find their place
constexpr double steady = 1.0;      // metres, most that a group shifts as the other sees it
constexpr double memory = 10.0;     // seconds after which the evidence speaks for itself
constexpr double partedDistance = 4.0;  // metres
constexpr double partedShift = 2.0;     // metres

}  // namespace

void GroupMeetings::watch(const TickBeliefs& tick, const std::map<PersonId, GroupId>& groupOf) {
  dropParted(tick);
  for (const auto& [groups, encounter] : encountersAt(tick, groupOf)) {
    if (!isMeeting(encounter)) {
      continue;
    }
    for (const PersonPair& pair : encounter.pairs) {
      m_metUntil[pair] = tick.time + memory;
    }
  }
}

GroupMeetings::Encounters GroupMeetings::encountersAt(const TickBeliefs& tick,
                                                      const std::map<PersonId, GroupId>& groupOf) {
  Encounters encounters;
  for (const PairBelief& pair : tick.pairs) {
    const auto a = groupOf.find(pair.a);
    const auto b = groupOf.find(pair.b);
    if (!pair.latest || a == groupOf.end() || b == groupOf.end() || a->second == b->second) {
      continue;
    }
    const LatestMoments& latest = *pair.latest;
    Encounter& encounter = encounters[std::minmax(a->second, b->second)];
    encounter.nearest = std::min(encounter.nearest, pair.distance);
    encounter.nearestLatest = std::min(encounter.nearestLatest, latest.distance);
    encounter.cameFrom = std::min(encounter.cameFrom, latest.cameFrom);
    encounter.velocityDifference += latest.velocityDifference;
    encounter.shift += a->second < b->second ? latest.shift : -latest.shift;
    encounter.pairs.emplace_back(pair.a, pair.b);
  }
  for (auto& [groups, encounter] : encounters) {
    const auto count = static_cast<double>(encounter.pairs.size());
    encounter.velocityDifference /= count;
    encounter.shift *= 1.0 / count;
  }
  return encounters;
}

bool GroupMeetings::isMeeting(const Encounter& encounter) {
  return encounter.cameFrom > apart && encounter.nearest < inReach &&
         encounter.nearestLatest < sideBySide && encounter.velocityDifference < alike &&
         std::hypot(encounter.shift.x, encounter.shift.y) < steady;
}

void GroupMeetings::dropParted(const TickBeliefs& tick) {
  std::erase_if(m_metUntil, [&tick](const auto& met) { return tick.time > met.second; });
  for (const PairBelief& pair : tick.pairs) {
    if (!pair.latest || pair.latest->distance > partedDistance ||
        std::hypot(pair.latest->shift.x, pair.latest->shift.y) > partedShift) {
      m_metUntil.erase({pair.a, pair.b});
    }
  }
}

}  // namespace grouptracker
