#pragma once

#include "host/camera/TsaiCalibration.h"

#include <istream>
#include <string>

namespace grouptracker {

/// Reads a camera of Tsai's model from XML:
///
///     <Camera name="View_001">
///       <Geometry width="768" height="576" dpx="5.127e-03" dpy="4.65e-03" .../>
///       <Intrinsic focal="5.55" kappa1="5.11e-03" cx="324.2" cy="282.6" sx="1.09"/>
///       <Extrinsic tx="828.7" ty="-3175.5" tz="35469.3" rx="2.04" ry="-0.893" rz="-0.431"/>
///     </Camera>
///
/// in millimetres and radians. Broken XML, missing elements and attributes and numbers that make no
/// camera are an `InputError`.
TsaiCamera readTsaiCamera(std::istream& in, const std::string& name);

}  // namespace grouptracker
