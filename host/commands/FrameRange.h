#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace grouptracker {

/// A range of frames by the input's own numbers, both ends included: "A:B", "A:" or ":B".
struct FrameRange {
  std::int64_t first = std::numeric_limits<std::int64_t>::min();
  std::int64_t last = std::numeric_limits<std::int64_t>::max();

  /// None for a text that is no range.
  static std::optional<FrameRange> parse(const std::string& text);

  /// Whether nothing is left out.
  bool isWhole() const { return *this == FrameRange(); }
  bool contains(std::int64_t frame) const { return frame >= first && frame <= last; }
  bool operator==(const FrameRange&) const = default;
};

}  // namespace grouptracker
