#include "library/TrackerValues.h"

#include "host/base/InputError.h"
#include "host/camera/CalibrationReader.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/grouping/FrameGroupsWriter.h"

#include <cmath>
#include <sstream>
#include <utility>

namespace grouptracker {

namespace {

constexpr double perMetre = 1e4;  // as fine as positions are told

/// The decimal number that a single-precision one stands for.
double decimal(double value) {
  return std::round(value * perMetre) / perMetre;
}

TrackerGroup toTrackerGroup(FoundGroup&& group) {
  return {group.id,         std::move(group.members),
          group.since,      {decimal(group.position.x), decimal(group.position.y)},
          group.confidence, std::move(group.from)};
}

}  // namespace

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

TrackerStep toTrackerStep(const RunStep& step) {
  FrameGroups found = toFrameGroups(step);
  TrackerStep result;
  result.frame = found.frame;
  result.time = found.time;
  result.alone = std::move(found.alone);
  for (FoundGroup& group : found.groups) {
    result.groups.push_back(toTrackerGroup(std::move(group)));
  }
  for (const TrackedEvent& event : step.events) {
    result.events.push_back({nameOf(event.kind), event.group, event.other, event.persons});
  }
  return result;
}

FrameGroups toFrameGroups(const TrackerStep& step) {
  FrameGroups frame{step.frame.value_or(0), step.time, {}, step.alone};
  for (const TrackerGroup& group : step.groups) {
    frame.groups.push_back({group.id,
                            group.members,
                            group.since,
                            {group.position[0], group.position[1]},
                            group.confidence,
                            group.from});
  }
  return frame;
}

std::string toLine(const TrackerStep& step) {
  return toLine(toFrameGroups(step));
}

}  // namespace grouptracker
