#pragma once

#include "HostCalibration.h"

#include <QSharedPointer>

#include <string>

/// The camera that a scene file carries in its first line, under the key "calibration", as
/// `calibrationText` writes it; null for a scene without one. A line that is no JSON is left to the
/// scene's reader; a camera that is none is an `InputError`.
QSharedPointer<HostCalibration> readSceneCalibration(const std::string& path);
