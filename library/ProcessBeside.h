#pragma once

#include "host/people/InputFrame.h"
#include "host/run/RunParameters.h"
#include "host/run/TrackerRun.h"
#include "library/OwnStatics.h"

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>

#include <functional>
#include <memory>
#include <string>

namespace grouptracker {

/// The process at work within another program: beside any number of others, without files but the
/// one of its parameters, and with what it prints handed over as text.
class ProcessBeside {
 public:
  using Hear = std::function<void(const std::string&)>;

  /// `hear` gets what the process prints while it is set up and at each frame; nothing is printed
  /// without it. The parameters are known to be good, as the process would end the program at wrong
  /// ones.
  ProcessBeside(const RunParameters& parameters,
                const QSharedPointer<kelAbstractDataCalibration>& calibration, Hear hear);
  ProcessBeside(const ProcessBeside&) = delete;
  ProcessBeside& operator=(const ProcessBeside&) = delete;
  ~ProcessBeside();

  /// What the process says at the next frame, see `TrackerRun`.
  RunStep advance(const InputFrame& frame);

 private:
  template <typename Action>
  void work(const Action& action);

  OwnStatics m_statics;
  Hear m_hear;  ///< empty when nobody listens
  std::unique_ptr<TrackerRun> m_run;
};

}  // namespace grouptracker
