#pragma once

#include <chrono>
#include <optional>

namespace grouptracker {

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
