#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace grouptracker {

/// What a progress counts, and how fast that is said to go.
struct ProgressUnit {
  const char* one = "frame";
  const char* pace = "frames/s";
  double seconds = 1.0;  ///< of the pace
};

/// One line on standard error that follows a run while it lasts: frame of total, frames per second,
/// time left. Drawn over itself a few times a second, and removed before anything else is said.
class Progress {
 public:
  /// Whether standard error is a terminal, on which such a line makes sense.
  static bool isPossible();

  /// Without a total only frame and speed are shown. A progress that is not `enabled` is silent.
  Progress(bool enabled, std::optional<std::uint64_t> totalFrames, ProgressUnit unit = {});
  ~Progress() { clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Notes that `frame` frames are done.
  void update(std::uint64_t frame);
  /// Removes the line.
  void clear();
  /// Seconds since the start.
  double seconds() const;

 private:
  using Clock = std::chrono::steady_clock;

  void draw(std::uint64_t frame) const;

  bool m_enabled;
  bool m_isDrawn = false;
  std::optional<std::uint64_t> m_totalFrames;
  ProgressUnit m_unit;
  Clock::time_point m_start = Clock::now();
  Clock::time_point m_lastDrawn = m_start;
};

}  // namespace grouptracker
