#pragma once

#include "host/base/None.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

/// A group as the tracker's list at the end of each frame shows it:
///
///     - 4, mobiles: 155 156 startFrame=30, endFrame=-1, isUpdated=true, merged with 9 at frame 41
struct GroupLine {
  using Ties = std::vector<std::pair<int, int>>;  ///< other group and frame

  int id = 0;
  std::vector<std::int64_t> mobiles;  ///< of all remembered frames
  int endFrame = none;                ///< `none` while the group lives
  Ties merges;
  Ties splits;

  /// None for any other line.
  static std::optional<GroupLine> parse(const std::string& line);
};

}  // namespace grouptracker
