#include "host/grouping/GroupIdentity.h"

#include "host/grouping/PeopleFrame.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace grouptracker {

namespace {

constexpr double lowestBelief = -4.0;  // log-odds; also of those who were never near each other
constexpr double highestBelief = 7.0;  // log-odds; one sure pair must not outvote three unsure
constexpr double stay = 3.0;           // log-odds in favour of who is together already
constexpr double met = 2.0;            // log-odds of those whose groups have met, at least
constexpr double birth = 1.0;          // log-odds from which on a new group counts
constexpr double sureBirth = 3.0;      // log-odds from which on it counts at once
constexpr double confirmation = 0.8;   // seconds that it must last otherwise
constexpr double bridge = 15.0;        // seconds after which a group is over
constexpr double coolDown = 2.0;       // seconds until who left may come back
constexpr double absence = 1.0;        // seconds out of view that change nothing
constexpr double realLife = 2.0;       // seconds that a group must live to merge or split

double limited(double belief) {
  return std::clamp(belief, lowestBelief, highestBelief);
}

}  // namespace

std::vector<TickGroup> GroupIdentity::next(const TickBeliefs& tick, const LatestOf& latestOf) {
  m_time = tick.time;
  const GroupsOfPeople groupOf = groupsOf(tick.people);
  watchMeetings(tick, groupOf, latestOf);
  Gatherings gatherings = gather(tick, groupOf);
  m_partings.holdTogether(tick, gatherings);
  inherit(gatherings);
  nameTheRest(gatherings);
  std::vector<TickGroup> groups;
  for (const Gathering& gathering : gatherings) {
    const auto members = gathering.id ? membersOf(gathering) : std::vector<PersonId>();
    if (members.size() >= Gathering::core) {
      groups.push_back({*gathering.id, members, certaintyOf(gathering.evidence), {}});
    }
  }
  std::sort(groups.begin(), groups.end(),
            [](const TickGroup& a, const TickGroup& b) { return a.id < b.id; });
  explain(gatherings, groups);
  dismiss(tick, groups);
  admit(groups);
  forget();
  return groups;
}

/// The group that each of some people is in; 0 for none.
GroupIdentity::GroupsOfPeople GroupIdentity::groupsOf(const std::vector<PersonAt>& people) const {
  GroupsOfPeople groupOf;
  groupOf.reserve(people.size());
  auto member = m_memberOf.begin();  // goes along with the people
  for (const PersonAt& person : people) {
    while (member != m_memberOf.end() && member->first < person.person) {
      ++member;
    }
    const bool isMember = member != m_memberOf.end() && member->first == person.person;
    groupOf.push_back(isMember ? member->second : 0);
  }
  return groupOf;
}

/// Whether a group has lived for long enough to meet another, to merge or to split.
bool GroupIdentity::isReal(GroupId id) const {
  return m_time - m_groups.at(id).born >= realLife - ticks::tolerance;
}

void GroupIdentity::watchMeetings(const TickBeliefs& tick, GroupsOfPeople groupOf,
                                  const LatestOf& latestOf) {
  for (GroupId& group : groupOf) {
    group = group != 0 && isReal(group) ? group : 0;
  }
  m_meetings.watch(tick, groupOf, latestOf);
}

Gatherings GroupIdentity::gather(const TickBeliefs& tick, const GroupsOfPeople& groupOf) const {
  Gatherings gatherings;
  for (const PersonIsland& island :
       islandsOf(linksOf(tick, groupOf), tick.people.size(), lowestBelief)) {
    for (const Cluster& cluster : linkByAverage(island.scores)) {
      Gathering& gathering = gatherings.emplace_back();
      gathering.evidence = meanScore(cluster, island.beliefs);
      for (const std::size_t number : cluster) {
        const std::size_t person = island.people[number];
        gathering.people.push_back(tick.people[person].person);
        if (groupOf[person] != 0) {
          ++gathering.before[groupOf[person]];
        }
      }
    }
  }
  std::sort(gatherings.begin(), gatherings.end(), [](const Gathering& a, const Gathering& b) {
    return a.people.front() < b.people.front();
  });
  return gatherings;
}

/// What speaks for each pair, in favour of who is together already.
std::vector<PersonLink> GroupIdentity::linksOf(const TickBeliefs& tick,
                                               const GroupsOfPeople& groupOf) const {
  std::vector<PersonLink> links;
  links.reserve(tick.pairs.size());
  for (const PairBelief& pair : tick.pairs) {
    const double belief = m_meetings.haveMet(pair.a, pair.b) ? std::max(limited(pair.belief), met)
                                                             : limited(pair.belief);
    const GroupId group = groupOf[pair.indexOfA];
    const bool areTogether = group != 0 && group == groupOf[pair.indexOfB];
    links.push_back({pair.indexOfA, pair.indexOfB, belief, belief + (areTogether ? stay : 0.0)});
  }
  return links;
}

void GroupIdentity::inherit(Gatherings& gatherings) {
  // Most members first, then the older group, the lower id, the first gathering.
  std::vector<std::tuple<std::ptrdiff_t, double, GroupId, Gathering*>> claims;
  for (Gathering& gathering : gatherings) {
    for (const auto& [group, members] : gathering.before) {
      claims.emplace_back(-static_cast<std::ptrdiff_t>(members), m_groups.at(group).born, group,
                          &gathering);
    }
  }
  std::sort(claims.begin(), claims.end());
  m_taken.clear();
  for (const auto& [members, born, group, gathering] : claims) {
    if (!gathering->id && m_taken.insert(group).second) {
      gathering->id = group;
    }
  }
}

void GroupIdentity::nameTheRest(Gatherings& gatherings) {
  m_waitingNext.clear();
  for (Gathering& gathering : gatherings) {
    if (gathering.id) {
      continue;
    }
    const bool hasSplitOff =
        std::any_of(gathering.before.begin(), gathering.before.end(),
                    [](const auto& group) { return group.second >= Gathering::core; });
    gathering.id = remembered(gathering);
    if (!gathering.id && (hasSplitOff || hasWaited(gathering))) {
      gathering.id = found();
    }
    if (gathering.id) {
      m_taken.insert(*gathering.id);
    }
  }
  m_waiting = m_waitingNext;
}

std::optional<GroupId> GroupIdentity::remembered(const Gathering& gathering) const {
  std::optional<GroupId> best;
  std::size_t most = Gathering::core - 1;
  for (const auto& entry : m_groups) {
    const GroupId id = entry.first;
    const Group& group = entry.second;
    if (m_taken.contains(id) || group.hasEnded || m_time - group.lastSeen > bridge) {
      continue;
    }
    const auto common = static_cast<std::size_t>(
        std::count_if(gathering.people.begin(), gathering.people.end(), [&](PersonId person) {
          const auto until = group.memberUntil.find(person);
          return until != group.memberUntil.end() && m_time - until->second <= bridge;
        }));
    if (common > most && 2 * common >= std::max(gathering.people.size(), group.lastSize)) {
      most = common;
      best = id;
    }
  }
  return best;
}

bool GroupIdentity::hasWaited(const Gathering& gathering) {
  double since = m_time;
  for (auto a = gathering.people.begin(); a != gathering.people.end(); ++a) {
    for (auto b = a + 1; b != gathering.people.end(); ++b) {
      const auto waiting = m_waiting.find({*a, *b});
      const double pairSince = waiting == m_waiting.end() ? m_time : waiting->second;
      m_waitingNext[{*a, *b}] = pairSince;
      since = std::min(since, pairSince);
    }
  }
  return gathering.evidence > birth &&
         (m_time - since >= confirmation - ticks::tolerance || gathering.evidence > sureBirth);
}

GroupId GroupIdentity::found() {
  Group& group = m_groups[++m_lastId];
  group.born = m_time;
  group.lastSeen = m_time;
  return m_lastId;
}

std::vector<PersonId> GroupIdentity::membersOf(const Gathering& gathering) const {
  const GroupId id = *gathering.id;
  std::vector<PersonId> members;
  for (const PersonId person : gathering.people) {
    const auto group = m_memberOf.find(person);
    const auto left = m_left.find({person, id});
    const bool isIn = group != m_memberOf.end() && group->second == id;
    if (isIn || left == m_left.end() || m_time - left->second >= coolDown) {
      members.push_back(person);
    }
  }
  return members;
}

void GroupIdentity::explain(const Gatherings& gatherings, std::vector<TickGroup>& groups) {
  std::set<GroupId> present;
  for (const TickGroup& group : groups) {
    present.insert(group.id);
  }
  for (const Gathering& gathering : gatherings) {
    if (!gathering.id || !present.contains(*gathering.id)) {
      continue;
    }
    const auto group = std::find_if(groups.begin(), groups.end(), [&](const TickGroup& candidate) {
      return candidate.id == *gathering.id;
    });
    group->from = originOf(gathering, present);
    endAbsorbed(gathering, present);
  }
}

/// A new group splits off one that goes on; an old one merges with those that are gone.
std::vector<GroupId> GroupIdentity::originOf(const Gathering& gathering,
                                             const std::set<GroupId>& present) const {
  const bool isNew = m_groups.at(*gathering.id).isNew;
  std::vector<GroupId> origin;
  for (const auto& [group, members] : gathering.before) {
    const bool isSource = group != *gathering.id && members >= Gathering::core && isReal(group);
    if (isSource && present.contains(group) == isNew) {
      origin.push_back(group);
    }
  }
  if (isNew) {
    return {origin.begin(), origin.empty() ? origin.end() : origin.begin() + 1};
  }
  if (origin.empty() || !isReal(*gathering.id)) {
    return {};
  }
  origin.push_back(*gathering.id);
  std::sort(origin.begin(), origin.end());
  return origin;
}

void GroupIdentity::endAbsorbed(const Gathering& gathering, const std::set<GroupId>& present) {
  for (const auto& [group, members] : gathering.before) {
    if (members >= Gathering::core && !present.contains(group)) {
      m_groups.at(group).hasEnded = true;
    }
  }
}

/// Lets go of those who were in a group and are not. When all but one are out of view for a moment,
/// there is nobody whom the one could have left: both sides wait.
void GroupIdentity::dismiss(const TickBeliefs& tick, const std::vector<TickGroup>& groups) {
  std::map<PersonId, GroupId> present;
  for (const TickGroup& group : groups) {
    for (const PersonId member : group.members) {
      present[member] = group.id;
    }
  }
  if (std::includes(present.begin(), present.end(), m_memberOf.begin(), m_memberOf.end())) {
    return;  // nearly always
  }
  const auto isInView = [&tick](PersonId person) {
    return std::binary_search(
        tick.people.begin(), tick.people.end(), PersonAt{person, {}},
        [](const PersonAt& a, const PersonAt& b) { return a.person < b.person; });
  };
  const auto isAwayForAMoment = [&](PersonId person, const Group& group) {
    return !isInView(person) && !group.hasEnded && m_time - group.memberUntil.at(person) <= absence;
  };
  struct Attendance {
    std::size_t inView = 0;
    std::size_t awayForAMoment = 0;
  };
  std::map<GroupId, Attendance> attendances;
  for (const auto& [person, id] : m_memberOf) {
    attendances[id].inView += isInView(person) ? 1 : 0;
    attendances[id].awayForAMoment += isAwayForAMoment(person, m_groups.at(id)) ? 1 : 0;
  }
  std::erase_if(m_memberOf, [&](const auto& membership) {
    const auto& [person, id] = membership;
    const auto now = present.find(person);
    const bool isElsewhere = now != present.end() && now->second != id;
    const Attendance& attendance = attendances.at(id);
    const bool isLeftWaiting =
        isInView(person) && !isElsewhere && attendance.inView == 1 && attendance.awayForAMoment > 0;
    const bool isThere = now != present.end() && now->second == id;
    if (isThere || isLeftWaiting || isAwayForAMoment(person, m_groups.at(id))) {
      return false;
    }
    const bool hasWalkedOff = isElsewhere || (isInView(person) && attendance.inView > 1);
    m_left[{person, id}] = hasWalkedOff ? m_time : m_groups.at(id).memberUntil.at(person);
    return true;
  });
}

void GroupIdentity::admit(const std::vector<TickGroup>& groups) {
  for (const TickGroup& present : groups) {
    Group& group = m_groups.at(present.id);
    group.isNew = false;
    group.lastSeen = m_time;
    group.lastSize = present.members.size();
    for (const PersonId member : present.members) {
      m_memberOf[member] = present.id;
      group.memberUntil[member] = m_time;
    }
  }
}

void GroupIdentity::forget() {
  std::set<GroupId> inUse;
  for (const auto& [person, group] : m_memberOf) {
    inUse.insert(group);
  }
  std::erase_if(m_groups, [&](const auto& group) {
    return m_time - group.second.lastSeen > bridge && !inUse.contains(group.first);
  });
  for (auto& [id, group] : m_groups) {
    std::erase_if(group.memberUntil,
                  [this](const auto& member) { return m_time - member.second > bridge; });
  }
  std::erase_if(m_left, [this](const auto& left) { return m_time - left.second > coolDown; });
}

}  // namespace grouptracker
