#include "host/camera/BoxLifter.h"
#include "host/camera/CalibrationReader.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/camera/PinholeCalibration.h"
#include "host/input/SceneContextReader.h"
#include "tests/support/base/Texts.h"

#include <gtest/gtest.h>
#include <opencv2/calib3d.hpp>

#include <sstream>

namespace grouptracker {

namespace {

// 10 m above the origin of the scene, looking along y and 30 degrees down.
const cv::Matx33d lens(800, 0, 320, 0, 800, 240, 0, 0, 1);
const cv::Vec3d tilt(2.0943951023931953, 0, 0);

PinholeCalibration camera(const std::vector<double>& distortion = {}) {
  cv::Matx33d rotation;
  cv::Rodrigues(tilt, rotation);
  return {lens, distortion, tilt, -(rotation * cv::Vec3d(0, 0, 10))};
}

/// The homography from the image to the ground of a camera without distortion.
cv::Matx33d homographyOf(const PinholeCalibration& pinhole) {
  std::vector<cv::Point2d> image{{0, 480}, {640, 480}, {0, 240}, {640, 240}};
  std::vector<cv::Point2d> ground;
  for (const cv::Point2d& point : image) {
    const cv::Point3d seen = pinhole.imageToWorld(point, 0.0);
    ground.emplace_back(seen.x, seen.y);
  }
  return cv::findHomography(image, ground);
}

void expectNear(const cv::Point3d& a, const cv::Point3d& b, double tolerance) {
  EXPECT_LT(cv::norm(a - b), tolerance) << a << " and " << b;
}

TEST(PinholeCalibration, FindsTheScenePointAgainUnderAnyDistortion) {
  for (const auto& distortion :
       std::vector<std::vector<double>>{{},
                                        {-0.3, 0.1, 0.001, -0.002},
                                        {-0.35, 0.15, 0, 0, -0.03},
                                        {0.4, -0.2, 0.001, 0.001, 0.05, 0.6, -0.1, 0.02}}) {
    const PinholeCalibration pinhole = camera(distortion);
    expectNear(pinhole.getPosition(), {0, 0, 10}, 1e-9);
    for (const cv::Point3d& point :
         {cv::Point3d(0, 17, 0), cv::Point3d(4, 25, 1.7), cv::Point3d(-6, 22, 0.5)}) {
      expectNear(pinhole.imageToWorld(pinhole.worldToImage(point), point.z), point, 1e-6);
    }
  }
}

TEST(GroundPlaneCalibration, SeesWhatThePinholeSeesThatItWasMadeFrom) {
  const PinholeCalibration pinhole = camera();
  const GroundPlaneCalibration ground(homographyOf(pinhole), pinhole.getPosition());
  const cv::Point3d head(3, 20, 1.7);
  const cv::Point2d seen = ground.worldToImage(head);
  EXPECT_LT(cv::norm(seen - pinhole.worldToImage(head)), 1e-2);
  expectNear(ground.imageToWorld(seen, 1.7), head, 1e-6);
}

TEST(CameraEstimate, FindsTheCameraOfAPerspectiveView) {
  const cv::Matx33d homography = homographyOf(camera());
  expectNear(estimateCameraPosition(homography, {640, 480}), {0, 0, 10}, 1e-3);
  // The ground may be given mirrored.
  const cv::Matx33d mirrored = cv::Matx33d::diag({-1, 1, 1}) * homography;
  expectNear(estimateCameraPosition(mirrored, {640, 480}), {0, 0, 10}, 1e-3);
}

TEST(CameraEstimate, LetsBodiesPointUpwardsInAViewWithoutPerspective) {
  const cv::Matx33d plan(0.02, 0, -7, 0, -0.02, 6, 0, 0, 1);
  const GroundPlaneCalibration ground(plan, estimateCameraPosition(plan, {720, 576}));
  for (const cv::Point2d& foot :
       {cv::Point2d(10, 20), cv::Point2d(360, 300), cv::Point2d(700, 570)}) {
    cv::Point3d head = ground.imageToWorld(foot, 0.0);
    head.z = 1.7;
    EXPECT_LT(ground.worldToImage(head).y, foot.y - 20) << foot;
  }
}

TEST(CameraEstimate, GuessesTheUsualImageSizeAroundAllPlaces) {
  EXPECT_EQ(guessImageSize({620, 465}), cv::Size(640, 480));
  EXPECT_EQ(guessImageSize({716, 585}), cv::Size(720, 576));
  EXPECT_EQ(guessImageSize({9000, 10}), cv::Size(9000, 10));
}

TEST(BoxLifter, LiftsTheBodyOutOfItsOwnProjection) {
  const PinholeCalibration pinhole = camera();
  const cv::Rect box = projectBox(pinhole, {0.25F, 20.25F, 1.7F, -0.25F, 19.75F, 0.0F});
  const auto foot = liftFoot(pinhole, box);
  ASSERT_TRUE(foot);
  EXPECT_NEAR(foot->x, 0.0, 0.05);
  EXPECT_NEAR(foot->y, 19.75, 0.15);  // the nearest edge of the body is what the box stands on
  const auto body = liftBox(pinhole, box, *foot);
  ASSERT_TRUE(body);
  EXPECT_NEAR(body->b2, 1.7, 0.3);
  EXPECT_NEAR(body->b0 - body->b3, 0.5, 0.1);
  EXPECT_EQ(body->b5, 0.0F);
}

TEST(BoxLifter, KnowsWhereTheCameraSeesNothing) {
  const GroundPlaneCalibration ground(homographyOf(camera()), {0, 0, 10});
  EXPECT_EQ(projectBox(ground, {0.25F, 20.25F, 10.0F, -0.25F, 19.75F, 0.0F}), cv::Rect());
}

struct WrongFile {
  const char* content;
  const char* error;
};

const std::string head = "%YAML:1.0\n---\n";

std::string node(const std::string& name, int rows, int columns, const std::string& data) {
  return name + ": !!opencv-matrix\n   rows: " + std::to_string(rows) +
         "\n   cols: " + std::to_string(columns) + "\n   dt: d\n   data: [ " + data + " ]\n";
}

TEST(CalibrationReader, ReadsBothKindsOfCameras) {
  const TempFolder folder;
  const std::string turned =
      node("rotation_vector", 3, 1, "0, 0, 0") + node("translation_vector", 3, 1, "0, 0, 5");
  const auto pinhole = readCalibration(
      folder.write("pinhole.yml",
                   head + turned + node("camera_matrix", 3, 3, "100, 0, 50, 0, 100, 50, 0, 0, 1")));
  expectNear(pinhole->getPosition(), {0, 0, -5}, 1e-12);
  EXPECT_EQ(pinhole->worldToImage({1, 0, 0}), cv::Point2d(70, 50));
  const auto ground = readCalibration(
      folder.write("ground.yml", head + node("camera_position", 3, 1, "0, 0, 4") +
                                     node("homography", 3, 3, "0.01, 0, 0, 0, 0.01, 0, 0, 0, 1")));
  EXPECT_EQ(ground->imageToWorld({100, 200}, 2.0), cv::Point3d(0.5, 1.0, 2.0));
}

TEST(CalibrationReader, SaysInOneLineWhatIsWrong) {
  const TempFolder folder;
  const std::string identity = "1, 0, 0, 0, 1, 0, 0, 0, 1";
  const auto error = [&](const std::string& content) {
    const std::string path = folder.write("c.yml", content);
    return errorOf([&] { readCalibration(path); }).substr(path.size() - 5);
  };
  EXPECT_EQ(error(""), "c.yml:1: not a readable OpenCV file");
  EXPECT_EQ(error(head + "a: [ 1\nb: }\n"),
            "c.yml:4: not a readable OpenCV file: Incorrect indentation");
  EXPECT_EQ(error(head + "a: 1\n"), "c.yml:1: neither camera_matrix nor homography found");
  EXPECT_EQ(error("<?xml version=\"1.0\"?>\n<a>\n</b>\n").substr(0, 24),
            "c.yml:3: not valid XML: ");
  EXPECT_EQ(error("{\"homography\":\n }"), "c.yml:2: not valid JSON");
  EXPECT_EQ(error(head + "a: \x01\n"), "c.yml:3: holds bytes that are no text");
  EXPECT_EQ(error(head + "a: " + std::string(30, '[')), "c.yml:3: values are nested too deep");
  EXPECT_EQ(error(head + node("camera_matrix", 3, 3, identity)),
            "c.yml:1: rotation_vector is missing or no matrix");
  EXPECT_EQ(error(head + node("homography", 2000000000, 3, identity)),
            "c.yml:3: homography is missing or no matrix");
  EXPECT_EQ(error(head + node("homography", 3, 2, "1, 0, 0, 1, 0, 0")),
            "c.yml:3: homography has 6 values");
  EXPECT_EQ(error(head + node("homography", 3, 3, "1, 0, 0, 0, .Nan, 0, 0, 0, 1")),
            "c.yml:3: homography holds a number that is not finite");
  EXPECT_EQ(error(head + node("homography", 3, 3, "1, 0, 0, 1, 0, 0, 0, 0, 1") +
                  node("camera_position", 3, 1, "0, 0, 1")),
            "c.yml:3: homography cannot be inverted");
  EXPECT_EQ(
      error(head + node("homography", 3, 3, identity) + node("camera_position", 3, 1, "0, 0, 0")),
      "c.yml:8: camera_position lies on the ground");
}

// OpenCV's parser never came back from a few of these.
TEST(CalibrationReader, RefusesYamlThatOpenCvNeverWrites) {
  const TempFolder folder;
  const auto error = [&](const std::string& content) {
    const std::string path = folder.write("c.yml", content);
    const std::string whole = errorOf([&] { readCalibration(path); }).substr(path.size() - 5);
    const std::string common = " not a readable OpenCV file: ";
    const std::size_t found = whole.find(common);
    return found == std::string::npos ? whole : whole.substr(0, found);
  };
  EXPECT_EQ(error("homography: 1\n"), "c.yml:1: not a readable OpenCV file");
  EXPECT_EQ(error("%YAML:1.n: !!rix\n   rows\xac: 3\n   cols: 1\n   dt: d\n   \n---\n"
                  "- ho<?xmlphy\n- camera_pos\xff\nition\n"),
            "c.yml:1: not a readable OpenCV file");
  EXPECT_EQ(error(head + "- 1\n- 2\n"), "c.yml:3:");
  EXPECT_EQ(error(head + "a: 1\nword\n"), "c.yml:4:");
  EXPECT_EQ(error(head + "   a: 1\nb: 2\n"), "c.yml:3:");
  EXPECT_EQ(error(head + "a: 1\n...\n---\nb: 2\n"), "c.yml:4:");
  EXPECT_EQ(error(head + "a: 1\n---\nb: 2\n"), "c.yml:4:");
  EXPECT_EQ(error(head + "a: [ \"]\", # ]\n   1\n"), "c.yml:5:");
}

TEST(CalibrationReader, TakesYamlAsOpenCvAndPeopleWriteIt) {
  const TempFolder folder;
  const std::string path = folder.write(
      "c.yml",
      "%YAML 1.0\r\n# made by hand\r\n--- \r\n\r\n"
      "made: \"on [ Monday\" # by us\nflags : [ { x: 1 }, { y: '}' } ]\nplaces:\n   - one\n"
      "   - { x: 1,\n      y: 2 }\nnested:\n   deeper: 1.5\n   list: [ 1,\n      2 ]\n"
      "   # of the plane\n" +
          node("camera_position", 3, 1, "0, 0, 4") +
          node("homography", 3, 3, "0.01, 0, 0,\n      0, 0.01, 0, # row\n      0, 0, 1"));
  EXPECT_EQ(readCalibration(path)->imageToWorld({100, 200}, 2.0), cv::Point3d(0.5, 1.0, 2.0));
}

TEST(Homography, IsTurnedToColumnBeforeRow) {
  std::istringstream in("1 2 3\n\n4 5 6\n7 8 10\n");
  const cv::Matx33d homography = readHomography(in, "H.txt", ImageOrder::rowColumn);
  EXPECT_EQ(homography, cv::Matx33d(2, 1, 3, 5, 4, 6, 8, 7, 10));
}

TEST(Homography, SaysInWhichLineItIsWrong) {
  const auto error = [](const std::string& text) {
    return errorOf([&] {
      std::istringstream in(text);
      readHomography(in, "H.txt", ImageOrder::rowColumn);
    });
  };
  EXPECT_EQ(error("1 0 0\n0 1\n"), "H.txt:2: three numbers are expected, not 2");
  EXPECT_EQ(error("1 0 a\n"), "H.txt:1: a number is expected instead of \"a\"");
  EXPECT_EQ(error("1 0 0\n0 1 0\n"),
            "H.txt:3: three lines of three numbers are expected, the file ends before");
  EXPECT_EQ(error("1 0 0\n0 1 0\n0 0 1\n\n0 0 1\n"),
            "H.txt:5: a homography has three lines; this one is too many");
  EXPECT_EQ(error("1 0 0\n2 0 0\n0 0 1"), "H.txt:3: the homography cannot be inverted");
}

TEST(SceneContextReader, ReadsZonesAndSaysWhatIsWrong) {
  const auto read = [](const std::string& text) {
    std::istringstream in(text);
    return readSceneContext(in, "context.json");
  };
  const auto context = read(
      R"({"elements": [{"kind": "zone", "shape": "polygon", "height": 3,
                        "vertices": [[-1, 2.5, 0], [10, -1, 0]]}]})");
  ASSERT_EQ(context->getContext().size(), 1U);
  EXPECT_EQ(context->getContext().front().kind, "zone");
  EXPECT_EQ(context->getContext().front().vertices.front(), cv::Point3d(-1, 2.5, 0));

  const auto error = [&](const std::string& text) { return errorOf([&] { read(text); }); };
  EXPECT_EQ(error("{\"elements\":\n\n [}"), "context.json:3: not valid JSON");
  EXPECT_EQ(error(std::string(1000, '[')), "context.json:1: values are nested too deep");
  EXPECT_EQ(error("[]"), "context.json:1: the context must be an object");
  EXPECT_EQ(error(R"({"elements": [{"kind": "zone", "shape": 3}]})"),
            "context.json:1: elements[0].shape must be a string");
  EXPECT_EQ(error(R"({"elements": [{"kind": "a", "shape": "b", "vertices": [[1, 2]]}]})"),
            "context.json:1: elements[0].vertices[0] must be three numbers");
  EXPECT_EQ(error(R"({"elements": [{"kind": "a", "shape": "b", "vertices": [[1, 2, 1e999]]}]})"),
            "context.json:1: holds a number that is not finite");
}

}  // namespace

}  // namespace grouptracker
