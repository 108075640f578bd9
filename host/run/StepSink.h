#pragma once

#include "host/run/ReportedStep.h"

namespace grouptracker {

/// Takes the reported frames of a run or of its groups file, one after the other: an export, a
/// picture, a database. What cannot be written is an `OutputError` or `ClosedPipe`.
class StepSink {
 public:
  StepSink() = default;
  StepSink(const StepSink&) = delete;
  StepSink& operator=(const StepSink&) = delete;
  virtual ~StepSink() = default;

  virtual void write(const ReportedStep& step) = 0;
  /// Completes what is written; called once after the last frame, whatever ended the run.
  virtual void finish() {}
};

}  // namespace grouptracker
