#pragma once

#include "host/run/StepSink.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace grouptracker {

/// Hands the steps to other sinks on a thread of its own, so that exporting and drawing run beside
/// the tracking. At most `capacity` steps wait; the tracking then waits for the slowest sink. What
/// a sink throws comes out of the next `write()`, or out of `finish()`.
class BackgroundSink : public StepSink {
 public:
  static constexpr std::size_t capacity = 32;  // steps

  explicit BackgroundSink(std::vector<std::unique_ptr<StepSink>> sinks);
  ~BackgroundSink() override;

  void write(const RunStep& step) override { take(RunStep(step)); }
  void take(RunStep&& step) override;
  /// Waits until all steps are written, then finishes every sink.
  void finish() override;

 private:
  void work();
  void writeToAll(const RunStep& step);
  void stop();
  void rethrow();

  std::vector<std::unique_ptr<StepSink>> m_sinks;
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::deque<RunStep> m_waiting;
  bool m_isEnding = false;
  std::exception_ptr m_failure;
  std::thread m_thread;
};

}  // namespace grouptracker
