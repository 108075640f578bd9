#pragma once

#include "host/input/OpenedInput.h"
#include "host/people/ObservationTable.h"

#include <memory>

namespace grouptracker {

/// Completes an input that consists of observations: chooses its camera and assembles its frames.
/// The camera is the given one; else that of the given homography, with the camera's position
/// estimated; else, when people have image boxes only, the one that the boxes show.
/// `input` holds the files and, when known, the image size.
void assembleInput(std::unique_ptr<ObservationTable> observations, const InputOptions& options,
                   OpenedInput& input);

/// The camera behind a homography; `farthest` is the largest column and row at which anything is
/// seen, which gives the image size when nobody knows it.
QSharedPointer<kelAbstractDataCalibration> cameraOf(const cv::Matx33d& homography,
                                                    const std::optional<cv::Size>& imageSize,
                                                    const cv::Point2d& farthest);

}  // namespace grouptracker
