#include "host/camera/CalibrationReader.h"
#include "host/camera/PeopleCamera.h"
#include "host/camera/TsaiCalibration.h"
#include "host/input/CameraFromPeople.h"
#include "host/input/CvmlReader.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkersInView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace grouptracker {

namespace {

using testing::HasSubstr;

cv::Point2d footOf(const cv::Rect2d& box) {
  return {box.x + box.width / 2.0, box.y + box.height};
}

/// The median relative difference of the distances between people of one frame.
double medianDistanceError(const std::vector<PersonBox>& boxes,
                           const kelAbstractDataCalibration& estimated,
                           const kelAbstractDataCalibration& real) {
  std::vector<double> errors;
  for (auto a = boxes.begin(); a != boxes.end(); ++a) {
    for (auto b = a + 1; b != boxes.end() && b->step == a->step; ++b) {
      const auto distance = [&](const kelAbstractDataCalibration& camera) {
        return cv::norm(camera.imageToWorld(footOf(a->box), 0.0) -
                        camera.imageToWorld(footOf(b->box), 0.0));
      };
      errors.push_back(std::abs(distance(estimated) / distance(real) - 1.0));
    }
  }
  std::sort(errors.begin(), errors.end());
  return errors.empty() ? 1.0 : errors[errors.size() / 2];
}

TEST(PeopleCamera, FindsTheCameraThatSawThePeople) {
  const WalkersInView scene;
  const PeopleCamera camera =
      estimatePeopleCamera(scene.boxes(), WalkersInView::imageSize(), usualBodyHeight);
  EXPECT_NEAR(camera.height, 6.5, 0.4);
  EXPECT_NEAR(camera.tilt, 0.35, 0.05);
  EXPECT_NEAR(camera.roll, 0.03, 0.02);
  EXPECT_NEAR(camera.focalLength, 900.0, 150.0);
  EXPECT_LT(medianDistanceError(scene.boxes(), *camera.calibration(), *scene.camera()), 0.05);
}

TEST(PeopleCamera, SaysWhyBoxesDoNotShowTheCamera) {
  const WalkersInView scene;
  const auto reason = [](const std::vector<PersonBox>& boxes) {
    return errorOf([&] { estimatePeopleCamera(boxes, WalkersInView::imageSize(), 1.7); });
  };
  EXPECT_THAT(reason({}), HasSubstr("only 0 whole boxes of 0 people"));
  std::vector<PersonBox> one;
  std::vector<PersonBox> row;
  std::vector<PersonBox> upsideDown;
  for (const PersonBox& box : scene.boxes()) {
    if (box.person == 1) {
      one.push_back(box);
    }
    const double x = 60.0 * box.person + static_cast<double>(box.step % 20);
    row.push_back({box.step, box.person, {x, 200.0 + static_cast<double>(box.step % 7), 30, 80}});
    const double y = 30.0 + 35.0 * box.person;
    upsideDown.push_back({box.step, box.person, {x, y, 30, 110 - y / 5.0}});
  }
  EXPECT_THAT(reason(one), HasSubstr("boxes of 1 people"));
  EXPECT_THAT(reason(row), HasSubstr("at about one distance"));
  EXPECT_THAT(reason(upsideDown), HasSubstr("do not appear higher"));
}

TEST(TsaiCamera, StandsWhereItsMakerSaysAndFindsScenePointsAgain) {
  std::istringstream xml(R"(<?xml version="1.0"?>
<Camera name="View_001">
 <Geometry width="768" height="576" dpx="5.1273271277e-03" dpy="4.65e-03"/>
 <Intrinsic focal="5.5549183034" kappa1="5.1113043639e-03" cx="324.22149053" cy="282.56650051"
            sx="1.0937855397"/>
 <Extrinsic tx="828.73214225" ty="-3175.4796051" tz="35469.298547" rx="2.0405458695"
            ry="-0.89337703748" rz="-0.43056124791"/>
</Camera>)");
  const TsaiCalibration camera(readTsaiCamera(xml, "camera.xml"));
  EXPECT_LT(cv::norm(camera.getPosition() - cv::Point3d(-28.94, -19.53, 7.07)), 0.01);
  for (const cv::Point2d& pixel : {cv::Point2d(10, 200), cv::Point2d(400, 300)}) {
    EXPECT_LT(cv::norm(camera.worldToImage(camera.imageToWorld(pixel, 1.7)) - pixel), 1e-6);
  }
  std::istringstream wrong("<Camera>\n<Intrinsic focal=\"0\"/></Camera>");
  EXPECT_EQ(errorOf([&] { readTsaiCamera(wrong, "camera.xml"); }),
            "camera.xml:2: focal must not be 0");
}

/// The public recordings, where they are at hand: in the folder of the environment variable
/// GROUPTRACKER_DATA, else beside the project.
TEST(PublicRecording, CameraFromBoxesAloneGivesDistancesWithinATenth) {
  const char* const chosen = std::getenv("GROUPTRACKER_DATA");
  const std::filesystem::path folder =
      std::filesystem::path(chosen != nullptr ? chosen : GROUPTRACKER_DATA_FOLDER) /
      "pets2009_s2l1";
  if (!std::filesystem::exists(folder)) {
    GTEST_SKIP() << "no recordings in " << folder;
  }
  const auto boxes = peopleBoxes(*readCvml(folder / "PETS2009-S2L1.xml"));
  const auto real = readCalibration(folder / "calibration_derived.yml");
  const PeopleCamera camera = estimatePeopleCamera(boxes, {768, 576}, usualBodyHeight);
  EXPECT_LT(medianDistanceError(boxes, *camera.calibration(), *real), 0.10);
  const auto tsai = readCalibration(folder / "View_001.xml");
  EXPECT_LT(medianDistanceError(boxes, *tsai, *real), 1e-4);
}

}  // namespace

}  // namespace grouptracker
