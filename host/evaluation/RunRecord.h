#pragma once

#include "host/evaluation/Grouping.h"

#include <cstdint>
#include <vector>

namespace grouptracker {

/// A visible group of one time step.
struct FoundGroup {
  std::uint32_t id = 0;
  PersonGroup persons;  ///< ascending, may be a single one
  int merge = -1;       ///< the group that it absorbed lately; -1 for none
  int split = -1;       ///< the group that it split from lately; -1 for none
};

/// What a run found at one time step.
struct FoundStep {
  std::int64_t frame = 0;       ///< the input's own number
  std::vector<Person> persons;  ///< everybody in view, ascending
  std::vector<FoundGroup> groups;

  /// The groups of two and more.
  Grouping grouping() const;
};

/// All time steps of a run that have been reported, in order, those without persons included.
using RunRecord = std::vector<FoundStep>;

}  // namespace grouptracker
