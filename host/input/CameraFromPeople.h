#pragma once

#include "host/camera/PeopleCamera.h"
#include "host/input/OpenedInput.h"

#include <vector>

namespace grouptracker {

/// Gives an input without a camera the one that its people's boxes show, and a note that says so.
/// Boxes that do not carry the information are an `InputError` that asks for a camera. `input`
/// holds the files and, when known, the image size.
void estimateCamera(const std::vector<PersonBox>& boxes, OpenedInput& input);

/// The image size that an input is seen in when nobody knows it: a usual one around all boxes.
cv::Size imageSizeAround(const std::vector<PersonBox>& boxes);

}  // namespace grouptracker
