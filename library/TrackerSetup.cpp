#include "library/TrackerSetup.h"

#include "host/base/InputError.h"
#include "host/camera/CalibrationReader.h"
#include "host/camera/GroundPlaneCalibration.h"

#include <cmath>
#include <sstream>

namespace grouptracker {

void takeCamera(const TrackerSettings& settings, InputOptions& options) {
  if (settings.imageSize) {
    options.imageSize = cv::Size((*settings.imageSize)[0], (*settings.imageSize)[1]);
  }
  if (settings.homography) {
    const cv::Matx33d homography(settings.homography->data());
    const double determinant = cv::determinant(homography);
    if (!std::isfinite(determinant) || determinant == 0.0) {
      throw InputError("homography", "cannot be inverted");
    }
    options.homography = homography;
  } else if (!settings.calibrationFile.empty()) {
    if (isHomographyFile(settings.calibrationFile)) {
      options.homography = readHomography(settings.calibrationFile, ImageOrder::columnRow);
    } else {
      options.calibration = readCalibration(settings.calibrationFile);
    }
  }
}

QSharedPointer<kelAbstractDataCalibration> cameraOf(const TrackerSettings& settings) {
  InputOptions options;
  takeCamera(settings, options);
  return options.homography ? cameraOf(*options.homography, options.imageSize, cv::Point2d())
                            : options.calibration;
}

GroupRunOptions groupOptions(const TrackerSettings& settings, const RunParameters& parameters) {
  GroupRunOptions options;
  if (!settings.modelText.empty()) {
    std::istringstream text(settings.modelText);
    options.model = EvidenceModel::read(text, "model");
  } else if (!settings.modelFile.empty()) {
    options.model = EvidenceModel::read(settings.modelFile);
  }
  if (settings.lookAhead && (!std::isfinite(*settings.lookAhead) || *settings.lookAhead < 0.0)) {
    throw InputError("look-ahead", "a number of seconds from 0 on is expected");
  }
  options.lookAhead = settings.lookAhead;
  options.delay = parameters.values().delay;
  return options;
}

}  // namespace grouptracker
