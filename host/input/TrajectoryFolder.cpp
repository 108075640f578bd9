#include "TrajectoryFolder.h"

#include "CameraEstimate.h"
#include "GroundPlaneCalibration.h"
#include "Homography.h"
#include "ObsmatReader.h"
#include "TrackAssembler.h"

#include <filesystem>
#include <utility>

namespace {

std::string observationFile(const std::string& folder) {
  return std::filesystem::path(folder) / "obsmat.txt";
}

QSharedPointer<kelAbstractDataCalibration> estimateCamera(
    const std::string& homographyFile, const std::vector<cv::Point2d>& seenPlaces) {
  const cv::Matx33d homography = readHomography(homographyFile, ImageOrder::RowColumn);
  const cv::Size imageSize = guessImageSize(homography, seenPlaces);
  return QSharedPointer<GroundPlaneCalibration>::create(
      homography, estimateCameraPosition(homography, imageSize));
}

}  // namespace

bool isTrajectoryFolder(const std::string& path) {
  return std::filesystem::exists(observationFile(path));
}

OpenedInput openTrajectoryFolder(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  input.files.push_back(observationFile(path));
  auto observations = readObsmat(input.files.back());
  input.calibration = options.calibration;
  if (!input.calibration) {
    input.files.push_back(std::filesystem::path(path) / "H.txt");
    input.calibration = estimateCamera(input.files.back(), observations->positions());
  }
  input.frames =
      std::make_unique<TrackAssembler>(std::move(observations), input.calibration, options.links);
  return input;
}
