#include "host/pictures/Film.h"
#include "tests/support/base/Images.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkersInView.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace grouptracker {

namespace {

using testing::HasSubstr;
using testing::Not;

/// The program in a folder with a parameter file and inputs of many formats.
class Files : public testing::Test {
 protected:
  Files() {
    folder.write("p.txt", sampleParameters());
    folder.write("tracks.txt", scene.motFile());
    folder.write("boxes.xml", scene.cvmlFile());
    folder.write("scene.jsonl", walkingScene(12));
    std::filesystem::create_directories(folder.path() / "places");
    folder.write("places/obsmat.txt", obsmat());
    folder.write("places/H.txt", "0.0001 0.02 -7\n-0.03 0.0002 14\n-0.0005 0.00001 1\n");
  }

  static std::string obsmat() {
    std::ostringstream text;
    for (int frame = 0; frame < 60; ++frame) {
      for (int person = 1; person <= 5; ++person) {
        text << 780 + 6 * frame << ' ' << person << ' ' << 0.7 * person + 0.11 * frame << " 0 "
             << 3.1 + 0.01 * person * frame << " 0 0 0\n";
      }
    }
    return text.str();
  }

  /// The lines, the process's own output and the groups of a run.
  std::string resultOf(const QString& input, const QStringList& more = {}) {
    Program program(folder.path());
    const int status =
        program.run(QStringList{"run", input, "--parameters", "p.txt", "--output", "g.jsonl",
                                "--actors", "a.jsonl", "--mobile-dump", "none"} +
                    more);
    EXPECT_EQ(status, 0) << program.errors();
    return program.output() + textOf(folder.path() / "a.jsonl") + textOf(folder.path() / "g.jsonl");
  }
  int run(const QStringList& arguments) {
    Program program(folder.path());
    const int status = program.run(arguments);
    said = program.output() + program.errors();
    return status;
  }

  /// What a command's help says about how the input is read.
  std::string readingOf(const QString& command) {
    EXPECT_EQ(run({command, "--help"}), 0) << said;
    const auto begin = std::min(said.find("How the input is read:"), said.size());
    return said.substr(begin, said.find("\n\n", begin) - begin);
  }

  const WalkersInView scene;
  const TempFolder folder;
  std::string said;
};

TEST_F(Files, RunTheSameOnceConvertedToAScene) {
  for (const char* const input : {"tracks.txt", "boxes.xml", "places", "scene.jsonl"}) {
    const std::string expected = resultOf(input);
    EXPECT_GT(expected.size(), 1000U);
    ASSERT_EQ(run({"convert", input, "--output", "copy.jsonl"}), 0) << said;
    EXPECT_TRUE(resultOf("copy.jsonl") == expected) << input;
  }
}

TEST_F(Files, AreReadInTheSameWaysByEveryCommand) {
  const std::string expected = readingOf("run");
  EXPECT_THAT(expected, HasSubstr("--motion-steps"));
  for (const char* const command :
       {"convert", "calibrate", "check", "report", "evaluate", "tune"}) {
    EXPECT_EQ(readingOf(command), expected) << command;
  }
}

TEST_F(Files, AreWarnedOfOnceWhereTheyAreHardlyMeant) {
  //  A camera 7 m above the ground that looks 28 degrees down; column before row.
  folder.write("H.txt", "0.0862178 0 -41.3846\n0 -0.0404768 79.2786\n0 0.0108751 1\n");
  folder.write("far.txt", "0.344871 0 -165.538\n0 -0.161907 317.114\n0 0.0108751 1\n");
  std::string boxes;
  for (int frame = 1; frame <= 12; ++frame) {
    boxes += fmt::format("{0},1,{1},390,34,97,1,-1,-1,-1\n{0},2,{2},297,24,70,1,-1,-1,-1\n", frame,
                         200 + 5 * frame, 500 - 4 * frame);
  }
  folder.write("seen.txt", boxes);
  std::filesystem::create_directories(folder.path() / "clip/gt");
  folder.write("clip/gt/gt.txt", boxes);
  folder.write("clip/seqinfo.ini", "[Sequence]\nimDir=img1\nimWidth=960\nimHeight=720\n");
  folder.write("drawing.txt", sampleParameters({{"saveOutput:", "1"}, {"temporalWinSize:", "12"}}));

  struct Doubt {
    QStringList arguments;
    std::string warning;
  };
  const QStringList camera{"--calibration", "H.txt"};
  const std::vector<Doubt> doubts{
      {QStringList{"seen.txt", "--homography-order", "rowcol"} + camera,
       "seen.txt: warning: through the homography 0 % of the people are of human size, with column "
       "and row exchanged 100 %: see --homography-order"},
      {{"seen.txt", "--calibration", "far.txt"},
       "does it belong to another view, or to other units?"},
      {{"seen.txt", "--calibration", "far.txt"}, "most people (24 of 24) are more than 5.1 m tall"},
      {QStringList{"seen.txt", "--frames", "50:"} + camera,
       "seen.txt: warning: no frame lies within --frames; the last is 12"},
      {QStringList{"seen.txt", "--frames", ":0"} + camera,
       "no frame lies within --frames; the first behind them is 1"},
      {QStringList{"clip"} + camera, "clip: warning: imDir: there is no folder clip/img1"},
      {QStringList{"seen.txt"} + camera, "(\"saveOutput:\"), but no frame has an image"},
      {QStringList{"seen.txt"} + camera, "12 frames are not more than the process waits"}};
  for (const auto& [arguments, warning] : doubts) {
    EXPECT_EQ(run(QStringList{"check", "--parameters", "drawing.txt"} + arguments), 1) << said;
    EXPECT_THAT(said, HasSubstr(warning));
    EXPECT_EQ(said.find(warning), said.rfind(warning)) << "said twice: " << said;
    run(QStringList{"run", "--parameters", "drawing.txt", "--actors", "a.jsonl", "--diagnostics",
                    "none", "--mobile-dump", "none"} +
        arguments);
    EXPECT_THAT(said, HasSubstr(warning));
  }
  EXPECT_EQ(run(QStringList{"check", "seen.txt", "--parameters", "p.txt"} + camera), 0) << said;
}

TEST_F(Files, GiveEveryCommandWhatTheyGaveToTheRun) {
  folder.write("truth.txt", "1 2\n");
  folder.write("camera.txt", "0.02 0.0001 -7\n0.0002 -0.03 14\n0.00001 -0.0005 1\n");
  std::string boxes = scene.motFile();
  for (int frame = 1; frame <= 80; ++frame) {
    boxes += std::to_string(frame) + ",99,300,300,30,80,0.2,-1,-1,-1\n";
  }
  folder.write("doubtful.txt", boxes);
  const QStringList reading{"--calibration", "camera.txt", "--min-confidence", "0.5",
                            "--frames",      "11:60",      "--own-links",      "2"};
  const std::string expected = resultOf("doubtful.txt", reading);
  EXPECT_EQ(expected.find("\"inputFrame\": 10,"), std::string::npos);
  EXPECT_EQ(expected.find("TPO 99\n"), std::string::npos);

  ASSERT_EQ(run(QStringList{"report", "doubtful.txt", "g.jsonl", "--output", "r.html"} + reading),
            0)
      << said;
  EXPECT_THAT(textOf(folder.path() / "r.html"), HasSubstr("\"frames\":50,"));
  EXPECT_EQ(run(QStringList{"check", "doubtful.txt"} + reading), 1) << said;
  EXPECT_THAT(said, HasSubstr("0 problems"));
  EXPECT_EQ(run(QStringList{"evaluate", "g.jsonl", "--truth", "truth.txt", "--baselines", "--input",
                            "doubtful.txt"} +
                reading),
            0)
      << said;
  EXPECT_EQ(run(QStringList{"tune", "doubtful.txt:truth.txt", "--base", "p.txt", "--output",
                            "best.txt", "--trials", "1", "--quiet"} +
                reading),
            0)
      << said;
  ASSERT_EQ(run(QStringList{"convert", "doubtful.txt", "--output", "copy.jsonl"} + reading), 0)
      << said;
  EXPECT_TRUE(resultOf("copy.jsonl") == expected);
}

TEST_F(Files, TakeTheirImagesFromAFilm) {
  const cv::Size size(64, 48);
  Film film(folder.path() / "film.avi", 10.0);
  for (int frame = 0; frame < 12; ++frame) {
    film.add(cv::Mat(size, CV_8UC3, cv::Scalar::all(20.0 * frame)));
  }
  film.finish();
  ASSERT_EQ(run({"convert", "scene.jsonl", "--images", "film.avi", "--output", "copy.jsonl"}), 0)
      << said;
  EXPECT_THAT(textOf(folder.path() / "copy.jsonl"),
              HasSubstr(R"({"frame": 12, "image": "copy-images/000012.png", )"));
  EXPECT_NEAR(cv::mean(imageOf(folder.path() / "copy-images/000012.png"))[0], 220, 5);
  resultOf("scene.jsonl");
  const auto page = [this](const QString& images) {
    EXPECT_EQ(run({"report", "scene.jsonl", "g.jsonl", "--output", "r.html", "--images", images}),
              0)
        << said;
    return textOf(folder.path() / "r.html");
  };
  EXPECT_THAT(page("film.avi"), HasSubstr("id=\"image-11\""));
  EXPECT_THAT(page("copy-images"), HasSubstr("id=\"image-11\""));
  EXPECT_THAT(page("none"), Not(HasSubstr("id=\"image-0\"")));
}

TEST_F(Files, SeeTheSameThroughAHomographyInEitherOrder) {
  folder.write("colrow.txt", "0.02 0.0001 -7\n0.0002 -0.03 14\n0.00001 -0.0005 1\n");
  const QStringList rowFirst{"--calibration", "places/H.txt", "--homography-order", "rowcol"};
  for (const char* const input : {"tracks.txt", "places"}) {
    const std::string expected = resultOf(input, {"--calibration", "colrow.txt"});
    EXPECT_TRUE(resultOf(input, rowFirst) == expected) << input;
    EXPECT_FALSE(resultOf(input, {"--calibration", "places/H.txt"}) == expected) << input;
  }
  EXPECT_TRUE(resultOf("places") == resultOf("places", rowFirst));
}

TEST_F(Files, GetTheCameraThatTheirPeopleShowAndSaySo) {
  ASSERT_EQ(run({"calibrate", "tracks.txt", "--image-size", "768x576", "--output", "camera.yml"}),
            0)
      << said;
  EXPECT_THAT(said, HasSubstr("camera height: 6."));
  const QStringList size{"--image-size", "768x576"};
  EXPECT_TRUE(resultOf("tracks.txt", {"--calibration", "camera.yml"}) ==
              resultOf("tracks.txt", size));
  run(QStringList{"run", "tracks.txt", "--parameters", "p.txt", "--output", "g.jsonl",
                  "--diagnostics", "none", "--mobile-dump", "none"} +
      size);
  EXPECT_THAT(said,
              HasSubstr("tracks.txt: no camera is given; from the people in images of 768x576 "
                        "pixels it is estimated to be 6."));
  EXPECT_EQ(run({"calibrate", "places", "--image-size", "768x576", "--output", "camera.yml"}), 2);
  EXPECT_THAT(said, HasSubstr("has no image boxes"));
}

TEST_F(Files, AreCheckedWhole) {
  EXPECT_EQ(run({"check", "scene.jsonl", "--parameters", "p.txt"}), 0) << said;
  folder.write("bad.txt", "1,1,0,0,5,9\n1,2,0,0\n2,x,0,0,5,9\n3,1,0,0,5,9\n3,1,0,0,5,9\n");
  folder.write("q.txt", sampleParameters({{"maxDistGroupMerge:", "2500"}}));
  folder.write("c.json", "{\"elements\": 3}");
  folder.write("camera.txt", "1 0 0\n0 1 0\n0.001 0.002 1\n");
  EXPECT_EQ(run({"check", "bad.txt", "--parameters", "q.txt", "--context", "c.json",
                 "--calibration", "camera.txt", "--homography-order", "rowcol"}),
            2);
  for (const char* const line : {"bad.txt:2: 6 to 10 numbers", "bad.txt:3: a number is expected",
                                 "c.json:1: ", "bad.txt:5: person 1 is observed twice at frame 3",
                                 "warning: maxDistGroupMerge: 2500 is outside of the usual"}) {
    EXPECT_THAT(said, HasSubstr(line));
  }
  std::string same = "1,1,0,0,5,9\n";
  std::string different = same;
  for (int i = 0; i < 1000; ++i) {
    same += "1,1\n";
    different += fmt::format("{0},1,0,0,5,9\n{0},1,0,0,5,9\n", i + 2);
  }
  folder.write("same.txt", same);
  EXPECT_EQ(run({"check", "same.txt"}), 2);
  EXPECT_THAT(said, HasSubstr("same.txt:4: 6 to 10 numbers"));
  EXPECT_THAT(said, Not(HasSubstr("same.txt:5: ")));
  EXPECT_THAT(said, HasSubstr("; 1000 such in all\n"));
  EXPECT_THAT(said, HasSubstr("\n2 problems, "))
      << "this and the camera, though boxes are read twice for one";
  folder.write("different.txt", different);
  EXPECT_EQ(run({"check", "different.txt", "--calibration", "camera.txt"}), 2);
  EXPECT_THAT(said, HasSubstr("stopped after 50 problems"));
  folder.write("damaged.jsonl", walkingLine(1) + "{\n" + walkingLine(3));
  EXPECT_EQ(run({"check", "damaged.jsonl"}), 2);
  EXPECT_THAT(said, HasSubstr("damaged.jsonl:2: not valid JSON"));
  EXPECT_THAT(said, HasSubstr("1 problem,")) << "what follows from the damage is not reported";
}

TEST_F(Files, WarnOfWhatIsLegalButStrange) {
  folder.write("sparse.txt", "1,1,100,100,30,80\n2,1,900,100,30,80\n500,1,100,100,30,80\n");
  folder.write("camera.txt", "0.02 0 -7\n0 -0.03 14\n0 -0.0005 1\n");
  EXPECT_EQ(run({"check", "sparse.txt", "--calibration", "camera.txt", "--image-size", "768x576"}),
            1)
      << said;
  EXPECT_THAT(said, HasSubstr("nobody is seen for 497 frames"));
  EXPECT_THAT(said, HasSubstr("the box of person 1 lies outside of the image of 768x576 pixels"));
}

TEST_F(Files, WarnOfCentimetresAndOfWhatARunWouldNotDo) {
  std::string metres = "frame,id,x,y\n";
  std::string centimetres = metres;
  for (int frame = 1; frame <= 40; ++frame) {
    metres += fmt::format("{},1,{},1.5\n", frame, 0.05 * frame);
    centimetres += fmt::format("{},1,{},150\n", frame, 5 * frame);
  }
  folder.write("m.csv", metres);
  folder.write("cm.csv", centimetres);
  folder.write("truth.txt", "1 8\n");
  EXPECT_EQ(run({"check", "m.csv", "--rate", "25", "--parameters", "p.txt"}), 0) << said;
  EXPECT_EQ(run({"check", "cm.csv", "--unit", "cm", "--rate", "25"}), 0) << said;
  EXPECT_EQ(run({"check", "cm.csv", "--rate", "25", "--top-view", "--truth", "truth.txt", "--set",
                 "saveOutput=1", "--set", "openCVOutput=1", "--set", "outputFolder=no/such/"}),
            2);
  for (const char* const line :
       {"most moves (39 of 39) are faster than 12 m/s: are the places in centimetres (--unit cm)",
        "--top-view: nothing is drawn", "outputFolder: there is no folder no/such",
        "truth.txt:1: no group has two members in view together in cm.csv"}) {
    EXPECT_THAT(said, HasSubstr(line));
  }
}

}  // namespace

}  // namespace grouptracker
