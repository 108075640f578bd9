#pragma once

#include "FrameSource.h"
#include "LinkOptions.h"

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>

#include <memory>
#include <string>
#include <vector>

/// What the user says about an input beside its name.
struct InputOptions {
  QSharedPointer<kelAbstractDataCalibration> calibration;  ///< null when none was given
  LinkOptions links;
  int wakeDescriptor = -1;  ///< becomes readable when the program is asked to stop
};

/// An input that is ready to be read.
struct OpenedInput {
  std::unique_ptr<FrameSource> frames;
  QSharedPointer<kelAbstractDataCalibration>
      calibration;                 ///< given or the input's own; may be null
  std::vector<std::string> files;  ///< what the input consists of
};
