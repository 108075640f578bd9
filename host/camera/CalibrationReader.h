#pragma once

#include "host/camera/HostCalibration.h"

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>

#include <string>

namespace grouptracker {

/// Reads a camera from an OpenCV file (`*.yml`, `*.xml` or `*.json`), node order free. Either the
/// full camera, world to camera in metres:
///
///     camera_matrix 3x3, rotation_vector 3x1, translation_vector 3x1,
///     distortion_coefficients (optional: 4, 5 or 8 values)
///
/// or its view of the ground: `homography` 3x3, image (column, row, 1) to ground (x, y, 1), and
/// `camera_position` 3x1. A camera of Tsai's model may also come as XML, see `readTsaiCamera`.
/// A file that is no such thing is an `InputError` that names the node.
QSharedPointer<kelAbstractDataCalibration> readCalibration(const std::string& path);

/// The key under which the first line of a scene file may carry the camera. A name of our own:
/// scenes from elsewhere may use a plainer one for something else.
inline constexpr const char* sceneCalibrationKey = "grouptrackerCalibration";

/// The camera that a scene file carries, as `calibrationText` writes it; null for a scene without
/// one. A line that is no JSON is left to the scene's reader; a camera that is none is an
/// `InputError`.
QSharedPointer<HostCalibration> readSceneCalibration(const std::string& path);

}  // namespace grouptracker
