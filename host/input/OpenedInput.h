#pragma once

#include "host/base/ProblemHandler.h"
#include "host/input/FrameRange.h"
#include "host/input/MotReader.h"
#include "host/people/InputFrame.h"
#include "host/people/LinkOptions.h"

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>
#include <opencv2/core/matx.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// What the user says about an input beside its name.
struct InputOptions {
  std::string format;                                      ///< empty to recognise it by content
  QSharedPointer<kelAbstractDataCalibration> calibration;  ///< null when none was given
  std::optional<cv::Matx33d> homography;  ///< from column and row to the ground, instead of it
  std::optional<cv::Size> imageSize;      ///< pixels; asked for only when the input does not say
  LinkOptions links;
  MotChoice mot;
  std::string images;        ///< a folder, a video or `noImages`; empty for the input's own
  bool decodesVideo = true;  ///< whether anybody looks at the pictures of a video
  FrameRange frames;
  ProblemHandler onProblem = throwProblem;
  int wakeDescriptor = -1;  ///< becomes readable when the program is asked to stop
};

/// An input that is ready to be read.
struct OpenedInput {
  std::unique_ptr<FrameSource> frames;
  QSharedPointer<kelAbstractDataCalibration>
      calibration;                    ///< given or the input's own; may be null
  std::vector<std::string> files;     ///< what the input consists of
  std::vector<std::string> notes;     ///< what the user should know about how it is read
  std::optional<cv::Size> imageSize;  ///< pixels; none when nobody said
};

}  // namespace grouptracker
