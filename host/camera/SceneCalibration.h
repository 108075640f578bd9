#pragma once

#include "host/camera/HostCalibration.h"

#include <QSharedPointer>

#include <string>

namespace grouptracker {

/// The key under which the first line of a scene file may carry the camera. A name of our own:
/// scenes from elsewhere may use a plainer one for something else.
inline constexpr const char* sceneCalibrationKey = "grouptrackerCalibration";

/// The camera that a scene file carries, as `calibrationText` writes it; null for a scene without
/// one. A line that is no JSON is left to the scene's reader; a camera that is none is an
/// `InputError`.
QSharedPointer<HostCalibration> readSceneCalibration(const std::string& path);

}  // namespace grouptracker
