#pragma once

#include "host/base/OutputPlace.h"
#include "host/people/InputFrame.h"
#include "host/run/MobileOwners.h"
#include "host/run/RunStep.h"

#include <kel/kelAbstractProcessGroupTracker.h>

#include <QList>
#include <QSharedPointer>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace grouptracker {

/// An exception that left the process, with the frame at which it did.
class ProcessError : public std::runtime_error {
 public:
  ProcessError(std::uint32_t frame, const std::string& message)
      : std::runtime_error("frame " + std::to_string(frame) + ": " + message) {}
};

/// How a run is set up before its first frame.
struct TrackerRunOptions {
  std::string parameterFile;
  std::uint32_t delay = 0;  ///< frames from a frame to the step about it, as the file has it
  QSharedPointer<kelAbstractDataCalibration> calibration;  ///< may be null
  QSharedPointer<kelDataContext> sceneContext;             ///< may be null
  bool printsDiagnostics = true;
  bool dumpsMobiles = true;
  std::string mobileDumpFile;     ///< empty for the process's own choice
  int mobileDumpDescriptor = -1;  ///< of that file, when the process is not to open it itself
  bool describesSteps = true;     ///< else nobody looks at the steps, and they come empty
  /// Else groups come with the properties alone that `RunGroup` knows the meaning of.
  bool keepsProperties = true;
  bool keepsImages = false;           ///< whether steps carry images that are in memory only
  bool processDrawsOnImages = false;  ///< such an image is then copied before the process has it
};

/// One run of a group-tracker process, frame by frame: feeds it and joins what it puts out with
/// what the input said about the reported frame. The only place that knows both the process's
/// records and the delay.
class TrackerRun {
 public:
  explicit TrackerRun(std::unique_ptr<kelAbstractProcessGroupTracker> process)
      : m_process(std::move(process)) {}

  /// Sets the process up; once, before the first frame. A wrong parameter file ends the program
  /// from within, with status 1.
  void configure(const TrackerRunOptions& options);
  /// Hands the next frame to the process and returns what it decided, if that is wanted. What the
  /// process throws comes out as `ProcessError`; the next frame may then be tried all the same.
  RunStep advance(const InputFrame& frame);
  /// The steps still owed when the input has ended: none, since the process decides no frame before
  /// the delay has passed.
  RunSteps finish() { return {}; }
  /// What the process could not write at the latest frame, as an error that names the file; none
  /// when all is written.
  std::optional<OutputError> outputProblem() const;
  /// The number of frames handed over so far: the process counts the same way.
  std::uint32_t frame() const { return m_frame; }

 private:
  void note(const InputFrame& frame);
  QList<QSharedPointer<kelDataActor>> process(const InputFrame& frame);
  RunStep takeReported();
  RunGroup describe(const kelDataActor& group) const;

  std::unique_ptr<kelAbstractProcessGroupTracker> m_process;
  TrackerRunOptions m_options;
  std::uint32_t m_frame = 0;
  /// What the input said at the last frames up to the delay, the latest last.
  std::deque<RunStep> m_noted;
  MobileOwners m_owners;
};

}  // namespace grouptracker
