#pragma once

#include "host/people/InputFrame.h"

#include <kel/kelAbstractProcessGroupTracker.h>

#include <QList>
#include <QSharedPointer>

#include <memory>
#include <stdexcept>
#include <string>

namespace grouptracker {

/// An exception that left the process, with the frame at which it did.
class ProcessError : public std::runtime_error {
 public:
  ProcessError(std::uint32_t frame, const std::string& message)
      : std::runtime_error("frame " + std::to_string(frame) + ": " + message) {}
};

/// How a process is set up before its first frame.
struct ProcessOptions {
  std::string parameterFile;
  QSharedPointer<kelAbstractDataCalibration> calibration;  ///< may be null
  QSharedPointer<kelDataContext> sceneContext;             ///< may be null
  bool printsDiagnostics = true;
  bool dumpsMobiles = true;
  std::string mobileDumpFile;  ///< empty for the process's own choice
};

/// Drives one group-tracker process, frame by frame.
class ProcessRunner {
 public:
  /// Sets the process up. A wrong parameter file ends the program from within, with status 1.
  ProcessRunner(std::unique_ptr<kelAbstractProcessGroupTracker> process,
                const ProcessOptions& options);

  /// Hands the next frame to the process and returns the actors that it added, one per group.
  /// What the process throws comes out as `ProcessError`; the next frame may then be tried all the
  /// same.
  QList<QSharedPointer<kelDataActor>> run(const InputFrame& frame);
  /// The number of frames handed over so far: the process counts the same way.
  std::uint32_t frame() const { return m_frame; }

 private:
  std::unique_ptr<kelAbstractProcessGroupTracker> m_process;
  std::uint32_t m_frame = 0;
};

}  // namespace grouptracker
