#pragma once

#include "host/camera/PeopleCamera.h"
#include "host/input/FrameRange.h"
#include "host/input/OpenedInput.h"
#include "host/people/ObservationTable.h"

#include <cstddef>
#include <string>
#include <vector>

namespace grouptracker {

/// People's boxes for estimating the camera: those of the input's first part, in order,
/// within a range of frames.

constexpr std::size_t mostPeopleBoxes = 200'000;  // enough for any camera, and bounded memory

/// Those of observations; to be called before the first step is read.
std::vector<PersonBox> peopleBoxes(ObservationTable& observations, const FrameRange& frames = {});
/// Those of a scene file's actors. Lines that are wrong are left to the scene's reader.
std::vector<PersonBox> peopleBoxes(const std::string& sceneFile, const FrameRange& frames = {});
/// Whether a scene's first mobile has an image box only, so that a camera is needed.
bool needsCamera(const std::string& sceneFile);
/// The largest column and row that a box reaches.
cv::Point2d farthestCorner(const std::vector<PersonBox>& boxes);

/// Gives an input without a camera the one that its people's boxes show, and a note that says so.
/// Boxes that do not carry the information are an `InputError` that asks for a camera. `input`
/// holds the files and, when known, the image size.
void estimateCamera(const std::vector<PersonBox>& boxes, OpenedInput& input);

/// The image size that an input is seen in when nobody knows it: a usual one around all boxes.
cv::Size imageSizeAround(const std::vector<PersonBox>& boxes);

}  // namespace grouptracker
