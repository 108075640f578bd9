#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace grouptracker {

/// What the program says of itself on standard error, a line each: plain, or for those who collect
/// lines as one JSON object:
///
///     {"time": "2026-11-22T08:12:13.123Z", "level": "warning", "message": "..."}
///
/// There is one log for the program; any thread may write to it.
namespace program_log {

enum class Format : std::uint8_t { text, json };
enum class Level : std::uint8_t { info, warning, error };

/// To be said before there are threads.
void setFormat(Format format);
/// Goes on when nobody takes the line: work is not lost because its words are.
void write(Level level, const std::string& text);

}  // namespace program_log

/// Keeps what happens again and again from being said again and again: at once, and from then on
/// once a minute at most.
class OnceInAWhile {
 public:
  /// Whether it is to be said now; true begins the next pause.
  bool isTime() {
    constexpr std::chrono::minutes pause(1);
    const auto now = Clock::now();
    if (m_last && now - *m_last < pause) {
      return false;
    }
    m_last = now;
    return true;
  }

 private:
  using Clock = std::chrono::steady_clock;

  std::optional<Clock::time_point> m_last;  ///< none before the first time
};

}  // namespace grouptracker
