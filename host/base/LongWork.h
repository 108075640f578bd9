#pragma once

#include <chrono>
#include <functional>

namespace grouptracker {

/// Lets somebody outside end what takes long and knows nothing of them, such as an interpreter
/// whose user presses Ctrl-C: as long as the object lives, a function is called in its thread now
/// and then, and may throw.
class LongWork {
 public:
  explicit LongWork(std::function<void()> look);
  LongWork(const LongWork&) = delete;
  LongWork& operator=(const LongWork&) = delete;
  ~LongWork();

  /// For each round of a loop that may go on for seconds. Without anybody outside it costs nothing.
  static void step();

 private:
  using Clock = std::chrono::steady_clock;

  std::function<void()> m_look;
  Clock::time_point m_latest = Clock::now();
};

}  // namespace grouptracker
