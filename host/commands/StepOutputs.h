#pragma once

#include "host/commands/StepOptions.h"
#include "host/people/InputFrame.h"
#include "host/run/EventDetector.h"
#include "host/run/FrameReport.h"
#include "host/run/ParameterFile.h"
#include "host/run/StepSink.h"

#include <cstddef>
#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace grouptracker {

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
  /// What pictures need of a frame that is not reported yet.
  struct Noted {
    std::vector<PersonPlace> people;
    std::filesystem::path imageFile;
    QSharedPointer<kelDataImage> image;
    std::string place;
  };

  bool m_draws;
  bool m_imagesAreDrawnOn;    ///< by the tracker, in place
  std::size_t m_delay;        ///< frames
  std::deque<Noted> m_noted;  ///< the last frames up to the delay, the latest last
  EventDetector m_detector;
  std::vector<std::unique_ptr<StepSink>> m_sinks;
};

}  // namespace grouptracker
