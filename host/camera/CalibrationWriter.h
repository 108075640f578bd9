#pragma once

#include "host/camera/HostCalibration.h"

#include <string>

namespace grouptracker {

/// Writes a camera as an OpenCV file that `readCalibration` reads to the same camera, to the last
/// bit. A file that cannot be written is an `OutputError`.
void writeCalibration(const HostCalibration& camera, const std::string& path);

/// The camera as a JSON object on one line: each node's numbers, row after row, by its name:
///
///     {"homography": [0.1, 0, -3.2, 0, ...], "camera_position": [0, 0, 5.8]}
std::string calibrationText(const HostCalibration& camera);

}  // namespace grouptracker
