#pragma once

#include "EventDetector.h"
#include "FrameReport.h"
#include "InputFrame.h"
#include "ParameterFile.h"
#include "StepOptions.h"
#include "StepSink.h"

#include <memory>
#include <vector>

/// Writes what the user asked for beside the groups file. Events are written before `write()`
/// returns, everything else on another thread. What cannot be written is an `OutputError`.
class StepOutputs {
 public:
  /// Opens all files.
  StepOutputs(const StepOptions& options, const ParameterFile& parameters);

  /// Notes the next input frame; to be called for every frame, before the process runs.
  void note(const InputFrame& frame);
  void write(const FrameReport& report);
  /// Completes all files after the last frame.
  void finish();
  /// The same when the run has failed: that failure is what the user is told, no further one.
  void finishAfterFailure();

 private:
  EventDetector m_detector;
  std::vector<std::unique_ptr<StepSink>> m_sinks;
};
