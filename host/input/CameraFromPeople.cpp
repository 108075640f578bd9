#include "host/input/CameraFromPeople.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/input/SceneLineParser.h"

#include <fmt/format.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <stdexcept>

namespace grouptracker {

namespace {

void appendPeople(const SceneLine& scene, std::int64_t step, std::vector<PersonBox>& boxes) {
  for (const SceneActor& actor : scene.actors) {
    const auto current =
        std::find_if(scene.mobiles.begin(), scene.mobiles.end(), [&](const SceneMobile& mobile) {
          return !actor.mobiles.empty() && mobile.id == actor.mobiles.back();
        });
    if (current != scene.mobiles.end()) {
      boxes.push_back({step, actor.id, current->box2D});
    }
  }
}

constexpr double degrees = 180.0 / CV_PI;

}  // namespace

std::vector<PersonBox> peopleBoxes(ObservationTable& observations, const FrameRange& frames) {
  std::vector<PersonBox> boxes;
  const std::int64_t frameStep = observations.frameStep();
  observations.visit([&](const ObservationRow& row) {
    if (row.observation.box2D && frames.contains(row.frame) && boxes.size() < mostPeopleBoxes) {
      boxes.push_back({row.frame / frameStep, row.observation.person, *row.observation.box2D});
    }
  });
  return boxes;
}

std::vector<PersonBox> peopleBoxes(const std::string& sceneFile, const FrameRange& frames) {
  std::vector<PersonBox> boxes;
  InputFile file(sceneFile);
  LineReader lines(file.stream(), sceneFile);
  SceneLineParser parser;
  SceneLine scene;
  try {
    for (std::int64_t step = 0; boxes.size() < mostPeopleBoxes && lines.nextFilled(); ++step) {
      parser.parse(lines.line(), scene);
      if (frames.contains(scene.frame.value_or(step + 1))) {
        appendPeople(scene, step, boxes);
      }
    }
  } catch (const ValueProblem&) {
    // The reader says what is wrong when it comes to that line.
  }
  return boxes;
}

bool needsCamera(const std::string& sceneFile) {
  InputFile file(sceneFile);
  LineReader lines(file.stream(), sceneFile);
  SceneLineParser parser;
  SceneLine scene;
  try {
    while (scene.mobiles.empty() && lines.nextFilled()) {
      parser.parse(lines.line(), scene);
    }
  } catch (const ValueProblem&) {
    return false;
  }
  return !scene.mobiles.empty() && !(scene.mobiles.front().box3D && scene.mobiles.front().position);
}

cv::Point2d farthestCorner(const std::vector<PersonBox>& boxes) {
  cv::Point2d farthest;
  for (const PersonBox& box : boxes) {
    farthest.x = std::max(farthest.x, box.box.x + box.box.width);
    farthest.y = std::max(farthest.y, box.box.y + box.box.height);
  }
  return farthest;
}

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
