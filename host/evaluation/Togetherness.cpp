#include "host/evaluation/Togetherness.h"

#include <algorithm>
#include <iterator>

namespace grouptracker {

void Togetherness::add(const Grouping& groups, const std::vector<Person>& persons) {
  for (const PersonGroup& group : groups) {
    for (std::size_t i = 0; i < group.size(); ++i) {
      for (std::size_t j = i + 1; j < group.size(); ++j) {
        ++m_together[{group[i], group[j]}];
      }
    }
  }
  for (const Person person : persons) {
    m_seen[person].push_back(m_stepCount);
  }
  ++m_stepCount;
}

Grouping Togetherness::ofMany(std::size_t steps) const {
  std::vector<PersonGroup> pairs;
  for (const auto& [pair, together] : m_together) {
    if (together >= steps) {
      pairs.push_back({pair.first, pair.second});
    }
  }
  return joinOverlapping(pairs);
}

Grouping Togetherness::forPart(double part) const {
  std::vector<PersonGroup> pairs;
  for (const auto& [pair, together] : m_together) {
    if (static_cast<double>(together) >= part * static_cast<double>(stepsWithBoth(pair))) {
      pairs.push_back({pair.first, pair.second});
    }
  }
  return joinOverlapping(pairs);
}

std::size_t Togetherness::stepsWithBoth(const Pair& pair) const {
  const auto first = m_seen.find(pair.first);
  const auto second = m_seen.find(pair.second);
  if (first == m_seen.end() || second == m_seen.end()) {
    return 0;
  }
  std::vector<std::size_t> both;
  std::set_intersection(first->second.begin(), first->second.end(), second->second.begin(),
                        second->second.end(), std::back_inserter(both));
  return both.size();
}

}  // namespace grouptracker
