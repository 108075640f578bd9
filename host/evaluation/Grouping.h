#pragma once

#include <cstdint>
#include <vector>

namespace grouptracker {

using Person = std::uint32_t;

/// Persons who belong together, in ascending order, each once.
using PersonGroup = std::vector<Person>;

/// Disjoint groups of two and more; whoever is in none of them is alone.
using Grouping = std::vector<PersonGroup>;

/// The groups that remain when lists that share a person are one group, repeated persons count once
/// and persons on their own are left out: the connected components of the lists, in ascending order
/// of their first persons.
Grouping joinOverlapping(const std::vector<PersonGroup>& lists);

/// The groups among some persons only; `persons` is in ascending order.
Grouping restrictTo(const Grouping& groups, const std::vector<Person>& persons);

/// For each of the persons the number of its group; whoever is alone has a number of its own. Both
/// in the order of `persons`, which is ascending and holds all members of the groups.
std::vector<int> labelsOf(const Grouping& groups, const std::vector<Person>& persons);

}  // namespace grouptracker
