#pragma once

#include "host/base/FileDescriptor.h"
#include "host/base/Log.h"
#include "host/commands/Progress.h"
#include "host/commands/RunOptions.h"
#include "host/commands/RunService.h"
#include "host/commands/RunStatus.h"
#include "host/commands/StepOutputs.h"
#include "host/commands/StopSignals.h"
#include "host/input/InputImages.h"
#include "host/input/InputWatch.h"
#include "host/input/OpenedInput.h"
#include "host/output/OutputReaders.h"
#include "host/output/RunFile.h"
#include "host/people/PersonCount.h"
#include "host/run/EventDetector.h"
#include "host/run/GroupRun.h"
#include "host/run/RunParameters.h"
#include "host/run/TrackerRun.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>

namespace grouptracker {

/// What a run did.
struct RunSummary {
  std::uint64_t frames = 0;
  std::uint64_t people = 0;             ///< different ones
  bool countedAll = true;               ///< else there were more
  std::optional<std::uint64_t> groups;  ///< different ones; none when nobody wanted them
  std::uint64_t events = 0;             ///< that happened to the groups
  std::uint64_t skippedFrames = 0;
  bool wantsTimes = false;  ///< groups were looked for in frames that have no times
  double seconds = 0.0;
  std::string stoppedBy;    ///< the name of the signal; empty when the input ended
  bool readerLeft = false;  ///< somebody who read an output left before its end
  bool endedWithLastReader = false;
};

/// One run from the opened input to the closed output. Outputs are opened when the parameters, the
/// camera and the first frame have turned out to be good, unless the input comes live; whatever
/// ends the run, they hold whole lines. Errors are thrown as `InputError`, `OutputError` and
/// `ProcessError`.
class RunSession {
 public:
  explicit RunSession(const RunOptions& options);

  /// Runs to the end of the input or until somebody asks for a stop.
  RunSummary run();

 private:
  void openInput();
  void passOver(const InputError& problem);
  void readFirstFrame();
  void readAhead();
  bool nextFrame(InputFrame& frame);
  void warnOfInput();
  void warn(const std::string& warning);
  void say(program_log::Level level, const std::string& line);
  void openOutputs();
  void startGroups();
  void startProcess(std::unique_ptr<kelAbstractProcessGroupTracker> tracker);
  void runFrames();
  void runToTheEnd();
  void runFrame(InputFrame& frame);
  void countPeople(const InputFrame& frame);
  void runProcess(const InputFrame& frame);
  void handOut(RunSteps steps);
  void finishAfterFailure(bool canWrite);
  void checkOutputsOfProcess();
  void checkDiagnostics();
  void countOutputsOfProcess();
  bool goesOn() const;
  void warnOfReaders();

  RunOptions m_options;
  StopSignals m_signals;
  RunParameters m_parameters;
  RunService m_service;  ///< before the input, whose threads count
  QSharedPointer<kelDataContext> m_context;
  OpenedInput m_input;
  std::optional<InputFrame> m_first;  ///< when it was read and not yet used
  bool m_isEmpty = false;             ///< the input ended before a first frame
  std::optional<InputWatch> m_watch;  ///< none before the input is opened
  PersonCount m_people;
  ImageLoader m_images;
  FileDescriptor m_dump;        ///< of the mobiles, which the process writes: holds the lock
  OutputReaders m_readers;      ///< of all that is written
  std::uint64_t m_damaged = 0;  ///< messages that were passed over
  OnceInAWhile m_tellingDamage;
  std::optional<RunStatus> m_status;       ///< none before the outputs are opened
  std::unique_ptr<StepOutputs> m_outputs;  ///< of the groups
  std::unique_ptr<StepSink> m_actors;      ///< null when nobody wants the process's own
  std::unique_ptr<TrackerRun> m_tracker;
  std::optional<GroupRun> m_groups;  ///< none when nobody wants groups
  EventDetector m_detector;
  std::optional<Progress> m_progress;
  RunSummary m_summary;
  off_t m_printed = 0;     ///< bytes of standard output that are whole frames, where it is a file
  int m_processErrno = 0;  ///< what the last frame left in errno
};

}  // namespace grouptracker
