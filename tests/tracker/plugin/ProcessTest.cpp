#include "tests/support/base/Images.h"
#include "tests/support/process/Printed.h"
#include "tests/support/process/ProcessDriver.h"
#include "tests/support/process/Scene.h"
#include "tests/support/process/StaticsGuard.h"
#include "tracker/clustering/matrix.h"
#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupExtension.h"
#include "tracker/geometry/Util.h"
#include "tracker/plugin/GroupTrackerProcessGroupTrackerPrivate.h"
#include "tracker/tracking/Group.h"
#include "tracker/tracking/GroupTracker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

namespace {

namespace fs = std::filesystem;
using Settings = GroupTrackerProcessGroupTrackerPrivate;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A pair that walks side by side. The process is made at the first step, from the parameters as
/// they stand then; decisions lie 2 frames back.
class ProcessTest : public testing::Test {
 protected:
  ProcessTest() { setTestParameters(); }

  void walkPair(unsigned int lastFrame) {
    scene.walk(1, 1, lastFrame, {0, 0});
    scene.walk(2, 1, lastFrame, {0, 1});
  }
  ProcessDriver& driver() { return process ? *process : process.emplace(); }
  /// The groups that the next frame reports.
  std::string step(const QSharedPointer<kelDataImage>& image = {}) {
    ++frame;
    text = printed([&] { groups = driver().step(scene.actors(frame), image); });
    return toText(groups);
  }
  std::string run(unsigned int lastFrame) {
    while (frame + 1 < lastFrame) {
      step();
    }
    return step();
  }

  StaticsGuard guard;
  Scene scene;
  std::optional<ProcessDriver> process;
  unsigned int frame = 0;
  std::string text;  ///< printed by the last step
  ProcessDriver::Actors groups;
};

TEST_F(ProcessTest, ReportsAFrameWhenItsFutureIsKnown) {
  walkPair(3);
  EXPECT_EQ(step(), "");
  EXPECT_EQ(step(), "");
  EXPECT_EQ(text,
            "\n\n********************************\n"
            "********** Frame 2 *************\n\n"
            "2 TPOs\n"
            "TPO id: 1\n"
            "   type: PERSON,    height: 1.700000,    width: 0.500000\n"
            "   id: 101,    type: PERSON,    height: 1.700000,    width: 0.500000\n"
            "   id: 201,    type: PERSON,    height: 1.700000,    width: 0.500000\n"
            "TPO id: 2\n"
            "   type: PERSON,    height: 1.700000,    width: 0.500000\n"
            "   id: 102,    type: PERSON,    height: 1.700000,    width: 0.500000\n"
            "   id: 202,    type: PERSON,    height: 1.700000,    width: 0.500000\n"
            "TPO 1\n"
            "TPO 2\n");
  EXPECT_EQ(step(),
            "0: 101 102 at (0, 0.5, 0) in (100, 100, 20, 80), AvgIntraDist \"1\", Merge -1, "
            "NumberOfMobiles 2, Split -1, Visible true\n");
  EXPECT_EQ(groups[0]->getBoundingBox3D(),
            (BoundingBox3D{-10000, -10000, -10000, 10000, 10000, 10000}));
  const auto properties = groups[0]->getSpecificProperties();
  EXPECT_EQ(properties["NumberOfMobiles"].type(), QVariant::ULongLong);
  EXPECT_EQ(properties["Merge"].type(), QVariant::Int);
  EXPECT_EQ(driver().process().actors().mid(0, 2), scene.actors(3)) << "groups come last";
}

TEST_F(ProcessTest, AGroupThatEndedStaysInvisibleAtItsLastFrame) {
  GroupTracker::maxFrames = 3;
  walkPair(3);
  run(5);
  const std::string ended = "0: 301 302 at (1, 0.5, 0) in (140, 100, 20, 80), Visible \"false\"\n";
  EXPECT_EQ(step(), ended);
  EXPECT_EQ(step(), "");
  EXPECT_THAT(text, HasSubstr("remove group 0\n"));
}

TEST_F(ProcessTest, AMergeIsRememberedFor49Frames) {
  GroupTracker::maxDistGroupUpdate = 10.0;
  Group::coherenceThreshold = 1000.0;
  walkPair(55);
  scene.walk(3, 2, 55, {0, 6});
  scene.walk(4, 2, 55, {0, 7});
  scene.frame(3).person(30).at(0, 3).from(202, 1.0).from(203, 1.0);
  EXPECT_THAT(run(4), AllOf(StartsWith("0: 201 202 203 204 "), HasSubstr(", Merge 1,")));
  EXPECT_THAT(run(53), HasSubstr(", Merge 1,"));
  EXPECT_THAT(step(), HasSubstr(", Merge -1,"));
}

TEST_F(ProcessTest, MobilesThatDescendFromAGroupButAreNotInItAreNamed) {
  GroupTracker::minReliabilityOthers = 0.3;
  walkPair(5);
  scene.frame(3).person(9).at(0, 20).from(202, 0.9);
  scene.frame(3).person(6).at(0, 60).from(8, 0.31).from(8, 0.5).from(202, 0.05);
  scene.frame(3).person(5).at(0, 80).from(8, 0.3).from(202, 0.05);
  scene.frame(1).person(8).at(0, 90);
  EXPECT_THAT(run(4), Not(HasSubstr("MobileSplit")));
  EXPECT_THAT(step(), AllOf(StartsWith("0: 301 302 "), HasSubstr(", MobileSplit \"9;6;\",")));
}

TEST_F(ProcessTest, EitherCrowdThresholdMakesACrowd) {
  walkPair(3);
  EXPECT_THAT(run(3), Not(HasSubstr("TypeOfGroup")));
  for (double* const threshold : {&Settings::minCrowdWidth, &Settings::minCrowdHeight}) {
    *threshold = 19999.0;
    process.emplace();
    frame = 0;
    EXPECT_THAT(run(3), HasSubstr("TypeOfGroup \"CROWD\""));
    *threshold = 20000.0;
  }
}

TEST_F(ProcessTest, TheImageBoxOfAGroupBeginsWithin10000Pixels) {
  walkPair(3);
  scene.frame(1).person(101).box2D({12000, 50, 10, 10});
  scene.frame(1).person(102).box2D({12000, 70, 10, 10});
  EXPECT_THAT(run(3), HasSubstr(" in (10000, 50, 2010, 30)"));
}

TEST_F(ProcessTest, SavesTheImageOfTheFrameThatItReports) {
  const TempFolder images;
  const TempFolder output;
  images.write("000007.png", "");
  GroupExtension::imagesFolder = images.path().string() + "/";
  GroupExtension::outputFolder = output.path().string() + "/";
  GroupExtension::saveOutput = GroupExtension::openCVOutput = true;
  GroupExtension::firstImage = 7;
  walkPair(4);
  for (int number = 1; number <= 4; ++number) {
    step(QSharedPointer<kelDataImage>::create(cv::Mat(300, 400, CV_8UC3, cv::Scalar::all(number))));
    EXPECT_EQ(text.find("Images of 6 caracters") != std::string::npos, number == 1);
  }
  EXPECT_THAT(text, testing::EndsWith("comment (updateDisplay): \n"));
  EXPECT_EQ(std::distance(fs::directory_iterator(output.path()), {}), 2);
  for (int number = 1; number <= 2; ++number) {
    const auto name = output.path() / ("00000" + std::to_string(number + 6) + "_output.png");
    const cv::Mat saved = imageOf(name);
    ASSERT_FALSE(saved.empty()) << name;
    EXPECT_EQ(saved.at<cv::Vec3b>(290, 10)[0], number) << "the image is that of the frame";
    // The lower edge of the first walker's box, within that of the group, in the palette's red.
    EXPECT_EQ(saved.at<cv::Vec3b>(160, 90 + 20 * number), cv::Vec3b(255, 0, 0));
  }
}

TEST_F(ProcessTest, TheSceneBoundsAreThoseOfTheZones) {
  const auto init = [this] { driver().process().init(); };
  EXPECT_THAT(printed(init), AllOf(StartsWith("parameter file name: "),
                                   HasSubstr("/parameters.txt\n"
                                             "minX 2147483648.000000, maxX -2147483648.000000, "
                                             "minY 2147483648.000000, maxY -2147483648.000000\n")));
  EXPECT_EQ(printed(init), "") << "the second time";

  process.emplace();
  driver().process().setSceneContext(QSharedPointer<kelDataContext>::create(
      std::list<ContextElement>{{"zone", "rectangle", {{-1, 2, 0}, {20, 8, 0}}}}));
  EXPECT_THAT(printed(init), HasSubstr("\nminX -1.000000, maxX 20.000000, minY 2.000000, "
                                       "maxY 8.000000\n"));
  // The clustering maps to these bounds and back, at each coordinate rounded to single precision.
  Settings::useClustering = true;
  GroupTracker::tolerance = 0.001;
  walkPair(3);
  run(3);
  EXPECT_THAT(text, HasSubstr(" [0.0000000186264515; -0.0000000596046448]      // Center 0\n"));
}

TEST_F(ProcessTest, DumpsTheMobilesWhereTheHostWants) {
  const TempFolder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  walkPair(1);
  const QVariant dumpFile(QString::fromStdString((folder.path() / "dump.txt").string()));
  for (const auto& wish : {QVariant(), QVariant(true), dumpFile, QVariant(false)}) {
    process.emplace(QMap<QString, QVariant>{{"mobileDump", wish}});
    printed([this] { driver().step(scene.actors(1)); });
  }
  fs::current_path(before);
  const std::string dump = textOf(folder.path() / "dump.txt");
  EXPECT_THAT(dump, StartsWith("------------ Mobiles with Groups at frame 1\n"));
  EXPECT_EQ(textOf(folder.path() / "metasimages.txt"), dump + dump);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2);
}

TEST_F(ProcessTest, WhatIsPrintedReachesTheOutputAlsoWhenAnExceptionLeaves) {
  Settings::useClustering = true;
  scene.frame(1).person(1).size(0.1F, 0.1F, 1.7F);
  run(2);
  testing::internal::CaptureStdout();
  EXPECT_THROW(driver().step(scene.actors(3)), math::matrix_error);
  EXPECT_THAT(
      testing::internal::GetCapturedStdout(),
      testing::EndsWith("nMobiles = 0\nnFeatures = 4\nnFeaturesSpeed = 2\ndata size = 6\n"));
}

}  // namespace
