#pragma once

#include "host/input/OpenedInput.h"

#include <string>

namespace grouptracker {

/// Whether the folder holds `obsmat.txt`.
bool isTrajectoryFolder(const std::string& path);

/// Opens a folder with `obsmat.txt` (see `readObsmat`) and, unless a calibration is given, `H.txt`,
/// a homography that takes (row, column, 1); the camera's position is then estimated.
OpenedInput openTrajectoryFolder(const std::string& path, const InputOptions& options);

}  // namespace grouptracker
