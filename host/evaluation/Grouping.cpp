#include "host/evaluation/Grouping.h"

#include "host/base/JoinedSets.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <numeric>
#include <utility>

namespace grouptracker {

Grouping joinOverlapping(const std::vector<PersonGroup>& lists) {
  std::map<Person, std::size_t> listOf;  // any list that holds the person
  JoinedSets sets(lists.size());
  for (std::size_t i = 0; i < lists.size(); ++i) {
    for (const Person person : lists[i]) {
      const auto [seen, isNew] = listOf.emplace(person, i);
      if (!isNew) {
        sets.join(i, seen->second);
      }
    }
  }
  std::map<std::size_t, PersonGroup> joined;
  for (const auto& [person, list] : listOf) {
    joined[sets.rootOf(list)].push_back(person);
  }
  Grouping groups;
  for (auto& [root, group] : joined) {
    if (group.size() > 1) {
      groups.push_back(std::move(group));
    }
  }
  std::sort(groups.begin(), groups.end());
  return groups;
}

Grouping restrictTo(const Grouping& groups, const std::vector<Person>& persons) {
  Grouping restricted;
  for (const PersonGroup& group : groups) {
    PersonGroup present;
    std::set_intersection(group.begin(), group.end(), persons.begin(), persons.end(),
                          std::back_inserter(present));
    if (present.size() > 1) {
      restricted.push_back(std::move(present));
    }
  }
  return restricted;
}

std::vector<int> labelsOf(const Grouping& groups, const std::vector<Person>& persons) {
  std::vector<int> labels(persons.size());
  std::iota(labels.begin(), labels.end(), static_cast<int>(groups.size()));
  for (std::size_t i = 0; i < groups.size(); ++i) {
    for (const Person person : groups[i]) {
      const auto place = std::lower_bound(persons.begin(), persons.end(), person);
      labels[static_cast<std::size_t>(place - persons.begin())] = static_cast<int>(i);
    }
  }
  return labels;
}

}  // namespace grouptracker
