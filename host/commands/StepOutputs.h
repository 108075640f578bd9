#pragma once

#include "host/commands/StepOptions.h"
#include "host/output/OutputReaders.h"
#include "host/run/StepSink.h"

#include <memory>

namespace grouptracker {

/// Hands every step to all that the user asked for. What a command writes of its own and the events
/// are written before `write()` returns, everything else on another thread. What cannot be written
/// is an `OutputError`; what nobody reads any more is left out.
class StepOutputs : public StepSink {
 public:
  /// Opens all files. `own` are the command's sinks; they come first.
  StepOutputs(const StepOptions& options, StepSinks own, OutputReaders& readers);

  void write(const RunStep& step) override { take(RunStep(step)); }
  void take(RunStep&& step) override;
  /// Completes all files after the last step, also when one of them fails.
  void finish() override;
  /// The same when the run has failed: that failure is what the user is told, no further one.
  void finishAfterFailure();

 private:
  StepSinks m_atOnce;
  std::unique_ptr<StepSink> m_beside;  ///< null without anything to write on another thread
};

}  // namespace grouptracker
