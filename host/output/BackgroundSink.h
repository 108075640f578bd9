#pragma once

#include "host/base/WorkBeside.h"
#include "host/run/StepSink.h"

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace grouptracker {

/// Hands the steps to other sinks on a thread of its own, so that exporting and drawing run beside
/// the tracking. At most `capacity` steps wait; the tracking then waits for the slowest sink. What
/// a sink throws comes out of the next `write()`, or out of `finish()`.
class BackgroundSink : public StepSink {
 public:
  static constexpr std::size_t capacity = 32;  // steps

  explicit BackgroundSink(std::vector<std::unique_ptr<StepSink>> sinks);

  void write(const RunStep& step) override { take(RunStep(step)); }
  void take(RunStep&& step) override { m_work.take(std::move(step)); }
  /// Waits until all steps are written, then finishes every sink.
  void finish() override;

 private:
  void writeToAll(const RunStep& step);

  std::vector<std::unique_ptr<StepSink>> m_sinks;
  WorkBeside<RunStep> m_work;  ///< behind what it works with
};

}  // namespace grouptracker
