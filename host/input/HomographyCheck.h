#pragma once

#include "host/input/OpenedInput.h"

#include <optional>
#include <string>

namespace grouptracker {

/// Whether a homography shows people of human size, tried on their boxes: when most are not, and
/// would be with column and row exchanged, or not even then, says so. Positions tell nothing.
/// `homography` takes (column, row, 1). None where all is well.
std::optional<std::string> homographyDoubt(ObservationTable& people, const cv::Matx33d& homography,
                                           const std::optional<cv::Size>& imageSize);

}  // namespace grouptracker
