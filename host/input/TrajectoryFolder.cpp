#include "host/input/TrajectoryFolder.h"

#include "host/camera/GroundPlaneCalibration.h"
#include "host/input/ObservationInput.h"
#include "host/input/ObsmatReader.h"
#include "host/people/TrackAssembler.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace grouptracker {

namespace {

std::string observationFile(const std::string& folder) {
  return std::filesystem::path(folder) / "obsmat.txt";
}

/// The largest column and row at which anybody is seen through the homography.
cv::Point2d farthestSeen(ObservationTable& observations, const cv::Matx33d& homography) {
  const cv::Matx33d groundToImage = homography.inv();
  cv::Point2d farthest;
  observations.visit([&](const ObservationRow& row) {
    const cv::Point2d seen = mapPoint(groundToImage, *row.observation.position);
    farthest = {std::max(farthest.x, seen.x), std::max(farthest.y, seen.y)};
  });
  return farthest;
}

}  // namespace

bool isTrajectoryFolder(const std::string& path) {
  return std::filesystem::exists(observationFile(path));
}

OpenedInput openTrajectoryFolder(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  input.files.push_back(observationFile(path));
  auto observations = readObsmat(input.files.back(), options.onProblem);
  input.calibration = options.calibration;
  input.imageSize = options.imageSize;
  if (!input.calibration) {
    auto homography = options.homography;
    if (!homography) {
      input.files.push_back(std::filesystem::path(path) / "H.txt");
      homography = readHomography(input.files.back(), ImageOrder::RowColumn);
    }
    input.calibration =
        cameraOf(*homography, input.imageSize, farthestSeen(*observations, *homography));
  }
  input.frames =
      std::make_unique<TrackAssembler>(std::move(observations), input.calibration, options.links);
  return input;
}

}  // namespace grouptracker
