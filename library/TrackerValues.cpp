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

TrackerGroup toTrackerGroup(const RunGroup& group) {
  TrackerGroup result;
  result.id = group.id;
  result.members.reserve(group.members.size());
  for (const RunMember& member : group.members) {
    result.members.push_back(member.person.value_or(0));
  }
  result.since = group.since.value_or(0);
  const cv::Point3f at = group.position.value_or(cv::Point3f());
  result.position = {decimal(at.x), decimal(at.y)};
  result.confidence = group.confidence.value_or(0.0);
  result.from = group.from;
  return result;
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
  TrackerStep result;
  result.frame = step.inputFrame.value_or(0);
  result.time = step.time;
  result.alone = aloneIn(step);
  result.groups.reserve(step.groups.size());
  for (const RunGroup& group : step.groups) {
    result.groups.push_back(toTrackerGroup(group));
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
