#pragma once

#include "host/people/InputFrame.h"

#include <cstdint>
#include <optional>

namespace grouptracker {

/// An input that yields one frame after the other, whatever its format. Bad input is an
/// `InputError` out of `next()`; all frames before it have been handed out by then.
class FrameSource {
 public:
  FrameSource() = default;
  FrameSource(const FrameSource&) = delete;
  FrameSource& operator=(const FrameSource&) = delete;
  virtual ~FrameSource() = default;

  /// Replaces `frame` by the next one; false at the end of the input, `frame` is then of no use.
  virtual bool next(InputFrame& frame) = 0;
  /// The number of frames from the first to the last; none for an input without a known end. May
  /// cost a pass over the input: for showing progress, not for deciding anything.
  virtual std::optional<std::uint64_t> totalFrames() { return std::nullopt; }
};

}  // namespace grouptracker
