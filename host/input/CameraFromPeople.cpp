#include "host/input/CameraFromPeople.h"

#include "host/base/InputError.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/input/PeopleBoxes.h"

#include <fmt/format.h>
#include <opencv2/core.hpp>

namespace grouptracker {

namespace {

constexpr double degrees = 180.0 / CV_PI;

}  // namespace

cv::Size imageSizeAround(const std::vector<PersonBox>& boxes) {
  return guessImageSize(farthestCorner(boxes));
}

void estimateCamera(const std::vector<PersonBox>& boxes, OpenedInput& input) {
  const std::string& file = input.files.front();
  const cv::Size size = input.imageSize.value_or(imageSizeAround(boxes));
  try {
    const PeopleCamera camera = estimatePeopleCamera(boxes, size, usualBodyHeight);
    input.calibration = camera.calibration();
    input.notes.push_back(fmt::format(
        "{}: no camera is given; from the people in images of {}x{} pixels it is estimated to be "
        "{:.1f} m above the ground, tilted {:.0f} degrees down, focal length {:.0f} pixels",
        file, size.width, size.height, camera.height, camera.tilt * degrees, camera.focalLength));
  } catch (const NoPeopleCamera& reason) {
    throw InputError(file, std::string("no camera is given, and none can be estimated: ") +
                               reason.what() + "; give one with --calibration");
  }
}

}  // namespace grouptracker
