#include "host/base/InputError.h"
#include "host/camera/HostCalibration.h"
#include "host/camera/PeopleCamera.h"
#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/input/CameraFromPeople.h"
#include "host/input/InputFormats.h"

#include <fmt/format.h>
#include <opencv2/core.hpp>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

namespace grouptracker {

namespace {

/// `grouptracker calibrate`: estimates the camera from the people's boxes, says on standard output
/// what it found, and writes it as a calibration file.
class CalibrateCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  InputChoice m_choice;
  std::string m_outputFile;
  double m_bodyHeight = usualBodyHeight;  ///< metres
};

const char* const calibrateExample = R"(Example:
  grouptracker calibrate tracks.txt --image-size 1920x1080 --output camera.yml)";

constexpr double degrees = 180.0 / CV_PI;
constexpr double percent = 100.0;
constexpr double wellKnown = 0.15;  // standard error of the focal length, as a share

void printCamera(const PeopleCamera& camera, double bodyHeight) {
  const double view = 2.0 * std::atan(camera.imageSize.width / 2.0 / camera.focalLength);
  fmt::print("camera height: {:.1f} m above the ground, if people are {:.2f} m tall on average\n",
             camera.height, bodyHeight);
  fmt::print(
      "tilt: looks {:.1f} degrees below the horizon, turned by {:.1f} degrees about its axis\n",
      camera.tilt * degrees, camera.roll * degrees);
  fmt::print("focal length: {:.0f} pixels, a view {:.0f} degrees wide (known to about {:.0f} %)\n",
             camera.focalLength, view * degrees, camera.focalError * percent);
  fmt::print(
      "residual: half of the boxes are within {:.1f} % of the height that the camera expects where "
      "they stand\n",
      camera.heightResidual * percent);
  fmt::print("used: {} boxes of {} people, {:.0f} % of them fit\n", camera.boxes, camera.people,
             camera.inliers * percent);
  if (camera.focalError > wellKnown) {
    fmt::print(
        "note: the people say little about the focal length, so distances away from the camera may "
        "be off by about as much\n");
  }
}

}  // namespace

Options CalibrateCommand::declare(CommandLine& program) {
  Options command = program.addCommand(
      "calibrate", "Estimates the camera from the boxes of people who walk on a flat ground",
      calibrateExample);
  declareInput(command, m_choice);
  command.add("--body-height", m_bodyHeight, "mean height of the people in metres")
      .within(0.5, 2.5)
      .showDefault();
  command.add("--output", m_outputFile, "the camera, OpenCV yml").required().writes("FILE");
  return command;
}

int CalibrateCommand::run() {
  const PeopleView view = readPeopleView(m_choice.input, inputOptions(m_choice));
  const auto known = m_choice.imageSize ? m_choice.imageSize : view.imageSize;
  try {
    const PeopleCamera camera =
        estimatePeopleCamera(view.boxes, known.value_or(imageSizeAround(view.boxes)), m_bodyHeight);
    writeCalibration(*camera.calibration(), m_outputFile);
    printCamera(camera, m_bodyHeight);
  } catch (const NoPeopleCamera& reason) {
    throw InputError(m_choice.input, std::string("no camera can be estimated: ") + reason.what());
  }
  return finished;
}

std::unique_ptr<Command> makeCalibrateCommand() {
  return std::make_unique<CalibrateCommand>();
}

}  // namespace grouptracker
