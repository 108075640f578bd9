#include "host/input/OpenedInput.h"

#include "host/base/InputError.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/input/CameraFromPeople.h"
#include "host/input/HomographyCheck.h"
#include "host/people/TrackAssembler.h"

#include <algorithm>
#include <utility>

namespace grouptracker {

namespace {

/// What the observations say about the view.
struct View {
  cv::Point2d farthest;  ///< largest column and row of a box, pixels
  bool hasPositions = false;
  bool hasBoxesOnly = false;
};

View viewOf(ObservationTable& observations) {
  View view;
  observations.visit([&](const ObservationRow& row) {
    const Observation& seen = row.observation;
    view.hasPositions = view.hasPositions || seen.position;
    view.hasBoxesOnly = view.hasBoxesOnly || !seen.position;
    if (seen.box2D) {
      view.farthest.x = std::max(view.farthest.x, seen.box2D->x + seen.box2D->width);
      view.farthest.y = std::max(view.farthest.y, seen.box2D->y + seen.box2D->height);
    }
  });
  return view;
}

}  // namespace

QSharedPointer<kelAbstractDataCalibration> cameraOf(const cv::Matx33d& homography,
                                                    const std::optional<cv::Size>& imageSize,
                                                    const cv::Point2d& farthest) {
  const cv::Size size = imageSize.value_or(guessImageSize(farthest));
  return QSharedPointer<GroundPlaneCalibration>::create(homography,
                                                        estimateCameraPosition(homography, size));
}

void assembleInput(std::unique_ptr<ObservationTable> observations, const InputOptions& options,
                   OpenedInput& input) {
  input.calibration = options.calibration;
  if (options.imageSize) {
    input.imageSize = options.imageSize;
  }
  if (!input.calibration) {
    const View view = viewOf(*observations);
    if (options.homography) {
      input.calibration = cameraOf(*options.homography, input.imageSize, view.farthest);
      const auto doubt = homographyDoubt(*observations, *options.homography, input.imageSize);
      if (doubt) {
        input.warnings.push_back(*doubt);
      }
    } else if (view.hasBoxesOnly) {
      if (view.hasPositions) {
        throw InputError(input.files.front(),
                         "some people have image boxes only, for which --calibration is needed");
      }
      estimateCamera(peopleBoxes(*observations), input);
    }
  }
  input.frames =
      std::make_unique<TrackAssembler>(std::move(observations), input.calibration, options.links);
}

void openRecording(TrackRecording recording, const InputOptions& options, OpenedInput& input) {
  input.rate = recording.rate;
  if (!recording.note.empty()) {
    input.notes.push_back(recording.note);
  }
  assembleInput(std::move(recording.people), options, input);
}

}  // namespace grouptracker
