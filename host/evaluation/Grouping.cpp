#include "host/evaluation/Grouping.h"

#include "host/base/JoinedSets.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace grouptracker {

Grouping joinOverlapping(const std::vector<PersonGroup>& lists) {
  std::vector<std::pair<Person, std::size_t>> listings;
  for (std::size_t i = 0; i < lists.size(); ++i) {
    for (const Person person : lists[i]) {
      listings.emplace_back(person, i);
    }
  }
  std::sort(listings.begin(), listings.end());
  const auto isSamePerson = [](const auto& a, const auto& b) { return a.first == b.first; };
  JoinedSets sets(lists.size());
  auto again = std::adjacent_find(listings.begin(), listings.end(), isSamePerson);
  for (; again != listings.end();
       again = std::adjacent_find(again + 1, listings.end(), isSamePerson)) {
    sets.join(again->second, (again + 1)->second);
  }
  listings.erase(std::unique(listings.begin(), listings.end(), isSamePerson), listings.end());
  std::vector<PersonGroup> joined(lists.size());
  for (const auto& [person, list] : listings) {
    joined[sets.rootOf(list)].push_back(person);
  }
  std::erase_if(joined, [](const PersonGroup& group) { return group.size() < 2; });
  std::sort(joined.begin(), joined.end());
  return joined;
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
