#include "host/grouping/GroupPartings.h"

#include "host/grouping/PeopleFrame.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace grouptracker {

namespace {

constexpr double parted = 2.0;  // metres between the nearest of those who part

/// Whether two gatherings have a common origin.
bool doesAnyPart(const Gatherings& gatherings) {
  std::set<GroupId> origins;
  for (const Gathering& gathering : gatherings) {
    for (const auto& [group, members] : gathering.before) {
      if (members >= Gathering::core && !origins.insert(group).second) {
        return true;
      }
    }
  }
  return false;
}

/// The group that both were part of, each with members enough to be one.
std::optional<GroupId> commonOrigin(const Gathering& a, const Gathering& b) {
  for (const auto& [group, members] : a.before) {
    const auto others = b.before.find(group);
    if (members >= Gathering::core && others != b.before.end() &&
        others->second >= Gathering::core) {
      return group;
    }
  }
  return std::nullopt;
}

/// Between the nearest two, metres.
double distanceOf(const Gathering& a, const Gathering& b, const TickBeliefs& tick) {
  const auto isOf = [](PersonId person, const Gathering& gathering) {
    return std::binary_search(gathering.people.begin(), gathering.people.end(), person);
  };
  double nearest = std::numeric_limits<double>::infinity();
  for (const PairBelief& pair : tick.pairs) {
    if ((isOf(pair.a, a) && isOf(pair.b, b)) || (isOf(pair.a, b) && isOf(pair.b, a))) {
      nearest = std::min(nearest, pair.distance);
    }
  }
  return nearest;
}

void unite(Gathering& gathering, const Gathering& other) {
  const auto weightOf = [](const Gathering& one) {
    return static_cast<double>(one.people.size() * (one.people.size() - 1));
  };
  const double own = weightOf(gathering);
  const double theirs = weightOf(other);
  gathering.evidence = (gathering.evidence * own + other.evidence * theirs) / (own + theirs);
  const auto middle = static_cast<std::ptrdiff_t>(gathering.people.size());
  gathering.people.insert(gathering.people.end(), other.people.begin(), other.people.end());
  std::inplace_merge(gathering.people.begin(), gathering.people.begin() + middle,
                     gathering.people.end());
  for (const auto& [group, members] : other.before) {
    gathering.before[group] += members;
  }
}

}  // namespace

void GroupPartings::holdTogether(const TickBeliefs& tick, Gatherings& gatherings) {
  if (!doesAnyPart(gatherings)) {
    m_since.clear();
    return;
  }
  std::map<GroupId, double> parting;
  for (auto a = gatherings.begin(); a != gatherings.end(); ++a) {
    for (auto b = a + 1; b != gatherings.end();) {
      const auto group = commonOrigin(*a, *b);
      if (group) {
        const auto known = m_since.find(*group);
        parting[*group] = known == m_since.end() ? tick.time : known->second;
      }
      const bool isHeld = group && tick.time - parting[*group] < m_lookAhead - ticks::tolerance &&
                          distanceOf(*a, *b, tick) < parted;
      if (!isHeld) {
        ++b;
        continue;
      }
      unite(*a, *b);
      b = gatherings.erase(b);
    }
  }
  m_since = std::move(parting);
}

}  // namespace grouptracker
