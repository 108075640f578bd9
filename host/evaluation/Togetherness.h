#pragma once

#include "host/evaluation/Grouping.h"

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace grouptracker {

/// Counts at how many time steps two persons were in one group, and at how many in view.
class Togetherness {
 public:
  /// Adds a time step; both in ascending order.
  void add(const Grouping& groups, const std::vector<Person>& persons);
  /// Connects those who were together at `steps` time steps and more.
  Grouping ofMany(std::size_t steps) const;
  /// Connects those who were together at `part` or more of the time steps with both in view.
  Grouping forPart(double part) const;

 private:
  using Pair = std::pair<Person, Person>;  ///< the lower person first

  std::size_t stepsWithBoth(const Pair& pair) const;

  std::size_t m_stepCount = 0;
  std::map<Pair, std::size_t> m_together;
  std::map<Person, std::vector<std::size_t>> m_seen;  ///< the steps with the person in view
};

}  // namespace grouptracker
