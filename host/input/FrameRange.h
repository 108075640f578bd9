#pragma once

#include "host/people/InputFrame.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
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

/// The frames of an input that lie within a range. Those before it are read all the same, since
/// later ones may name their mobiles; those behind it are not.
class FramesWithin : public FrameSource {
 public:
  using Warn = std::function<void(const std::string&)>;

  /// `warn` hears of a range that holds none of the input's frames.
  FramesWithin(std::unique_ptr<FrameSource> source, const FrameRange& range, Warn warn)
      : m_source(std::move(source)), m_range(range), m_warn(std::move(warn)) {}

  bool next(InputFrame& frame) override;

 private:
  std::unique_ptr<FrameSource> m_source;
  void warnOfNone() const;

  FrameRange m_range;
  Warn m_warn;
  std::optional<std::int64_t> m_seen;  ///< the last frame that was read
  bool m_hasAny = false;               ///< within the range
};

}  // namespace grouptracker
