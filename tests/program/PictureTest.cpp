#include "host/pictures/GroundMap.h"
#include "host/video/VideoLibrary.h"
#include "tests/support/base/Images.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

namespace grouptracker {

namespace {

using testing::HasSubstr;

TEST(GroundMap, KeepsEverybodyInsideAndNorthUp) {
  GroundMap map({400, 300});
  map.include({{0.0F, 0.0F}});
  const double closeUp = map.scale();
  map.include({{30.0F, -4.0F}, {std::numeric_limits<float>::quiet_NaN(), 0.0F}});
  EXPECT_LT(map.scale(), closeUp);
  for (const cv::Point2f place : {cv::Point2f(0.0F, 0.0F), cv::Point2f(30.0F, -4.0F)}) {
    EXPECT_TRUE(cv::Rect(0, 0, 400, 300).contains(map.toPicture(place)));
  }
  EXPECT_GT(map.toPicture({0.0F, -4.0F}).y, map.toPicture({0.0F, 0.0F}).y);
  EXPECT_NEAR(cv::norm(map.toPicture({10.0F, 0.0F}) - map.toPicture({20.0F, 0.0F})),
              10.0 * map.scale(), 1.0);
}

/// `grouptracker run` with pictures on a scene of 12 frames.
class Pictures : public testing::Test {
 protected:
  Pictures() { folder.write("p.txt", sampleParameters()); }

  void writeScene(bool withImages, int missing = 0) {
    std::string scene;
    for (int frame = 1; frame <= 12; ++frame) {
      const std::string name = std::to_string(frame) + ".png";
      scene += walkingLine(frame, withImages ? R"("image": ")" + name + "\", " : "");
      if (withImages && frame != missing) {
        writeImage(folder.path() / name, cv::Mat(400, 601, CV_8UC3, cv::Scalar::all(10 * frame)));
      }
    }
    folder.write("scene.jsonl", scene);
  }
  int run(const QStringList& more) {
    return program.run(QStringList{"run", "scene.jsonl", "--parameters", "p.txt", "--output",
                                   "groups.jsonl", "--diagnostics", "none", "--mobile-dump", "none",
                                   "--quiet"} +
                       more);
  }
  cv::Mat picture(const std::string& name) const { return imageOf(folder.path() / "out" / name); }

  const TempFolder folder;
  Program program{folder.path()};
};

TEST_F(Pictures, ShowTheReportedFrameAndTheViewFromAbove) {
  writeScene(true);
  EXPECT_EQ(run({"--video", "out", "--top-view"}), 0);
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "out" / "000013.png"));
  const cv::Mat last = picture("000012.png");
  ASSERT_EQ(last.size(), cv::Size(600 + 400, 400));
  EXPECT_EQ(last.at<cv::Vec3b>(200, 500), cv::Vec3b::all(120)) << "the image of frame 12";
  EXPECT_EQ(picture("000001.png").at<cv::Vec3b>(200, 500), cv::Vec3b::all(10));
}

TEST_F(Pictures, AreOfTheGroundAloneWithoutImages) {
  writeScene(false);
  EXPECT_EQ(run({"--video", "film.mp4"}), 0);
  const auto film = VideoLibrary::loaded().open(folder.path() / "film.mp4");
  ASSERT_TRUE(film);
  int frames = 0;
  while (!film->next().empty()) {
    ++frames;
  }
  EXPECT_EQ(frames, 12);
}

TEST_F(Pictures, TellWhichImageIsMissingAndKeepTheRest) {
  writeScene(true, 5);
  EXPECT_EQ(run({"--video", "out"}), 2);
  EXPECT_THAT(program.errors(), testing::StartsWith("scene.jsonl:5: the image "));
  EXPECT_THAT(program.errors(), HasSubstr("5.png is missing or not readable\n"));
  EXPECT_FALSE(picture("000004.png").empty());
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "out" / "000005.png"));
}

TEST_F(Pictures, RefuseAPlaceThatCannotBeWritten) {
  writeScene(false);
  EXPECT_EQ(run({"--video", "p.txt/film"}), 4);
  EXPECT_THAT(program.errors(), testing::StartsWith("p.txt/film: cannot be written: "));
  Program film(folder.path());
  EXPECT_EQ(film.run({"run", "scene.jsonl", "--parameters", "p.txt", "--output", "g.jsonl",
                      "--video", "no/film.mp4"}),
            4);
  EXPECT_THAT(film.errors(), testing::StartsWith("no/film.mp4: cannot be written: "));
  Program animation(folder.path());
  EXPECT_EQ(animation.run({"run", "scene.jsonl", "--parameters", "p.txt", "--output", "g.jsonl",
                           "--video", "film.gif"}),
            4);
  EXPECT_EQ(animation.errors(),
            "film.gif: cannot be written: a film ends in .mp4, .mkv or .avi, a new folder has no "
            "ending\n");
}

}  // namespace

}  // namespace grouptracker
