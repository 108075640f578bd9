#include "tests/support/base/TempFolder.h"
#include "tests/support/host/SampleParameters.h"
#include "tests/support/host/WalkersInView.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <sstream>

namespace grouptracker {

namespace {

using testing::HasSubstr;

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

  /// The lines and the groups of a run; the input's own frame numbers are taken out.
  std::string resultOf(const QString& input, const QStringList& more = {}) {
    Program program(folder.path());
    const int status = program.run(QStringList{"run", input, "--parameters", "p.txt", "--output",
                                               "g.jsonl", "--mobile-dump", "none"} +
                                   more);
    EXPECT_EQ(status, 0) << program.errors();
    return program.output() + std::regex_replace(textOf(folder.path() / "g.jsonl"),
                                                 std::regex("\"inputFrame\": [^,]*"), "");
  }
  int run(const QStringList& arguments) {
    Program program(folder.path());
    const int status = program.run(arguments);
    said = program.output() + program.errors();
    return status;
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
  folder.write("worse.txt", []() {
    std::string text = "1,1,0,0,5,9\n";
    for (int i = 0; i < 1000; ++i) {
      text += "1,1\n";
    }
    return text;
  }());
  EXPECT_EQ(run({"check", "worse.txt", "--calibration", "camera.txt"}), 2);
  EXPECT_THAT(said, HasSubstr("stopped after 50 problems"));
  folder.write("damaged.jsonl", walkingLine(1) + "{\n" + walkingLine(3));
  EXPECT_EQ(run({"check", "damaged.jsonl"}), 2);
  EXPECT_THAT(said, HasSubstr("damaged.jsonl:2: not valid JSON"));
  EXPECT_THAT(said, HasSubstr("1 problems")) << "what follows from the damage is not reported";
}

TEST_F(Files, WarnOfWhatIsLegalButStrange) {
  folder.write("sparse.txt", "1,1,100,100,30,80\n2,1,900,100,30,80\n500,1,100,100,30,80\n");
  folder.write("camera.txt", "0.02 0 -7\n0 -0.03 14\n0 -0.0005 1\n");
  EXPECT_EQ(run({"check", "sparse.txt", "--calibration", "camera.txt", "--image-size", "768x576"}),
            1)
      << said;
  EXPECT_THAT(said, HasSubstr("nobody is seen for 497 frames"));
  EXPECT_THAT(said, HasSubstr("lies outside of the image of 768x576 pixels"));
}

}  // namespace

}  // namespace grouptracker
