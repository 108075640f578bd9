#pragma once

#include "host/run/RunStep.h"

#include <utility>

namespace grouptracker {

/// Takes the steps of a run or of its file, one after the other: the groups file, an export,
/// pictures. A stage that makes other steps out of them is a sink that hands these on to the next
/// one. What cannot be written is an `OutputError` or `ClosedPipe`.
class StepSink {
 public:
  StepSink() = default;
  StepSink(const StepSink&) = delete;
  StepSink& operator=(const StepSink&) = delete;
  virtual ~StepSink() = default;

  virtual void write(const RunStep& step) = 0;
  /// The same for a step that nobody else needs, for sinks that keep it.
  virtual void take(RunStep&& step) { write(step); }
  /// Completes what is written; called once after the last step, whatever ended the run.
  virtual void finish() {}
};

}  // namespace grouptracker
