#pragma once

#include <cstdint>
#include <vector>

namespace grouptracker {

/// What happened to a simulated group.
struct GroupEvent {
  enum class Kind { created, joined, left, merged, split, ended };
  static constexpr int none = 0;  ///< no group

  Kind kind = Kind::created;
  int group = none;
  int other = none;  ///< the group that merged into `group`, or from which it split
  std::vector<std::uint32_t> persons;  ///< who came, went, or made the group
};

}  // namespace grouptracker
