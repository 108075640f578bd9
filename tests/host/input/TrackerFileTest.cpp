#include "host/input/CvmlReader.h"
#include "host/input/InputFormats.h"
#include "host/input/MotMessages.h"
#include "host/input/MotReader.h"
#include "host/input/MotSequence.h"
#include "tests/support/base/Texts.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace grouptracker {

namespace {

std::vector<ObservationStep> stepsOf(ObservationSource& source) {
  std::vector<ObservationStep> steps;
  for (ObservationStep step; source.next(step);) {
    steps.push_back(step);
  }
  EXPECT_EQ(source.totalSteps(), steps.size());
  return steps;
}

std::vector<ObservationStep> mot(const std::string& text, const MotChoice& choice = {}) {
  std::istringstream in(text);
  const auto table = readMot(in, "track.txt", choice);
  table->finish();
  return stepsOf(*table);
}

std::vector<ObservationStep> cvml(const std::string& text) {
  std::istringstream in(text);
  return stepsOf(*readCvml(in, "boxes.xml"));
}

std::vector<std::uint32_t> personsOf(const ObservationStep& step) {
  std::vector<std::uint32_t> persons;
  for (const Observation& observation : step.observations) {
    persons.push_back(observation.person);
  }
  return persons;
}

/// The frames of lines that arrive, as "frame:people", "x" for a line that is wrong.
std::string arriving(const std::string& text, bool isTopic) {
  std::istringstream in(text);
  MotMessages messages(in, "track.txt", {}, true, isTopic, 2);
  std::string all;
  for (bool isThere = true; isThere;) {
    try {
      PeopleMessage message;
      isThere = messages.next(message);
      all += isThere ? fmt::format("{}:{} ", *message.frame, message.people.size()) : "";
    } catch (const InputError&) {
      all += "x ";
    }
  }
  return all;
}

TEST(MotMessages, GoOnBehindAWrongNumberAndANewBeginningOfATopic) {
  const std::string box = ",1,2,3,4\n";
  const std::string lines = "8,1" + box + "8,2" + box + "8,3" + box + "999999,1" + box + "9,1" +
                            box + "1,1" + box + "1,2" + box + "2,1" + box;
  EXPECT_EQ(arriving(lines, true), "x 8:2 999999:1 9:1 1:2 2:1 ");
  EXPECT_EQ(arriving(lines, false), "x 8:2 x x x x 999999:1 ");
}

TEST(Mot, ReadsUnsortedLinesWithWindowsEndsAndAByteOrderMark) {
  const auto steps =
      mot("\xEF\xBB\xBF"
          "4, 70000, 10.5,20,30.25,80,0.5\r\n2,3,1,2,3,4\r\n\r\n"
          "1,3,1,2,3,4,1,-1,-1,-1\r\n1,1,1,2,3,4,1,5.5,6.5,0");
  ASSERT_EQ(steps.size(), 4U);
  EXPECT_EQ(personsOf(steps[0]), (std::vector<std::uint32_t>{1, 3}));
  EXPECT_EQ(*steps[0].observations[0].position, cv::Point2d(5.5, 6.5));
  EXPECT_FALSE(steps[0].observations[1].position) << "-1, -1, -1 are no values";
  EXPECT_EQ(steps[2].frame, 3);
  EXPECT_TRUE(steps[2].observations.empty());
  EXPECT_EQ(*steps[3].observations[0].box2D, cv::Rect2d(10.5, 20, 30.25, 80));
}

TEST(Mot, TakesThePedestriansOfAGroundTruthAndTheConfidentOfATracker) {
  const auto truth =
      mot("1,1,0,0,5,9,1,1,0.3\n1,2,0,0,5,9,0,1,1\n1,3,0,0,5,9,1,3,1\n"
          "2,4,0,0,5,9,0,8,1\n");
  ASSERT_EQ(truth.size(), 2U) << "a frame of which nobody counts is a frame all the same";
  EXPECT_EQ(personsOf(truth[0]), std::vector<std::uint32_t>{1});
  const auto tracks = mot("1,1,0,0,5,9,0.3\n1,2,0,0,5,9,0.4\n1,3,0,0,5,9\n", {0.4});
  EXPECT_EQ(personsOf(tracks[0]), (std::vector<std::uint32_t>{2, 3}));
}

struct BadText {
  const char* text;
  const char* error;
};

TEST(Mot, SaysInWhichLineItIsWrong) {
  const std::vector<BadText> cases{
      {"1,1,0,0,5,9\n1,2,0,0,5", "track.txt:2: 6 to 10 numbers are expected, not 5"},
      {"1,1,0,0,5,9,1,1,1,1,1", "track.txt:1: 6 to 10 numbers are expected, not 11"},
      {"1,1,0,0,5,9,1,1,2,0\n1,2,0,0,5,9,1,1",
       "track.txt:2: the line is cut: 8 numbers, 10 on the line before"},
      {"1,1,0,,5,9", "track.txt:1: a number is expected instead of \"\""},
      {"1,1,0,0,5,9x", "track.txt:1: a number is expected instead of \"9x\""},
      {"1,1,nan,0,5,9", "track.txt:1: a number is expected instead of \"nan\""},
      {"1,1,0,0,inf,9", "track.txt:1: a number is expected instead of \"inf\""},
      {"1,-1,0,0,5,9,0.9",
       "track.txt:1: the id is -1: these are detections that nobody has tracked; run a tracker on "
       "them first"},
      {"1,4294967296,0,0,5,9", "track.txt:1: the id must be a whole number from 0 to 4294967295"},
      {"0.5,1,0,0,5,9", "track.txt:1: the frame must be a whole number from 0 to 1000000000000000"},
      {"1,1,0,0,-5,9", "track.txt:1: the box has a negative width or height"},
      {"1,1,1e30,0,5,9", "track.txt:1: the box lies too far away to be pixels"},
      {"2,1,0,0,5,9\n1,1,0,0,5,9\n2,1,0,0,5,8",
       "track.txt:3: person 1 is observed twice at frame 2, first on line 1"},
      {"1,1,0,0,5,9\n2,1,0,0,5,9\n100000000000,1,0,0,5,9",
       "track.txt:3: the frame number jumps from 2 to 100000000000"},
  };
  for (const auto& [text, error] : cases) {
    EXPECT_EQ(errorOf([&text = text] { mot(text); }), error);
  }
  EXPECT_EQ(errorOf([] { mot(std::string(1 << 20, '1')); }),
            "track.txt:1: the line is longer than 65536 bytes");
}

// Whoever looks for problems reads on behind a jump, but not through all the frames in between.
TEST(Mot, PassesOverAJumpThatWasReported) {
  std::istringstream in("1,1,0,0,9,9\n2,1,0,0,9,9\n3000000000,1,0,0,9,9\n3000000001,1,0,0,9,9\n");
  std::vector<std::string> problems;
  const auto table = readMot(in, "track.txt", {}, [&](const InputError& problem) {
    problems.emplace_back(problem.what());
  });
  table->finish();
  EXPECT_EQ(problems,
            std::vector<std::string>{"track.txt:3: the frame number jumps from 2 to 3000000000"});
  EXPECT_EQ(stepsOf(*table).size(), 4U);
}

TEST(Mot, SortsInBoundedMemoryLikeInMemory) {
  std::mt19937 random(7);
  ObservationTable inMemory("all");
  ObservationTable onDisk("some", throwProblem, 100);
  std::vector<std::pair<std::int64_t, std::uint32_t>> rows;
  for (int frame = 1; frame <= 300; ++frame) {
    for (std::uint32_t person = 1; person <= 10; ++person) {
      rows.emplace_back(frame, person);
    }
  }
  std::shuffle(rows.begin() + 1000, rows.end(), random);  // sorted first, then in disorder
  for (const auto& [frame, person] : rows) {
    inMemory.add(frame, {person, cv::Point2d(person, static_cast<double>(frame)), {}}, 1);
    onDisk.add(frame, {person, cv::Point2d(person, static_cast<double>(frame)), {}}, 1);
  }
  inMemory.finish();
  onDisk.finish();
  const auto expected = stepsOf(inMemory);
  const auto steps = stepsOf(onDisk);
  ASSERT_EQ(steps.size(), 300U);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    EXPECT_EQ(steps[i].frame, expected[i].frame);
    ASSERT_EQ(personsOf(steps[i]), personsOf(expected[i]));
    EXPECT_EQ(steps[i].observations[9].position->y, static_cast<double>(i + 1));
  }
}

TEST(MotSequence, HasAllFramesOfTheSequenceWithTheirImages) {
  const TempFolder folder;
  std::filesystem::create_directories(folder.path() / "gt");
  std::filesystem::create_directories(folder.path() / "img1");
  folder.write("gt/gt.txt", "3,1,0,0,5,9,1,1,1\n");
  folder.write("seqinfo.ini",
               "[Sequence]\r\nimDir = img1\r\nseqLength=4\r\nimWidth=64\r\nimHeight=48\r\n"
               "imExt=.png\r\n");
  const MotSequence sequence(folder.path().string());
  EXPECT_EQ(sequence.info().imageSize, cv::Size(64, 48));
  const auto steps = stepsOf(*sequence.read({}, throwProblem));
  ASSERT_EQ(steps.size(), 4U);
  EXPECT_EQ(steps[0].frame, 1);
  EXPECT_EQ(steps[0].imageFile, folder.path() / "img1/000001.png");
  EXPECT_EQ(steps[2].observations.size(), 1U);
  std::istringstream wrong("[Sequence]\nseqLength=-4\n");
  EXPECT_EQ(errorOf([&] { readSequenceInfo(wrong, "seqinfo.ini"); }),
            "seqinfo.ini:2: the seqLength must be a whole number from 0 to 10000000");
}

TEST(Cvml, ReadsBoxesByTheirCentreAndKeepsEmptyFrames) {
  const auto steps = cvml(R"(<?xml version="1.0"?>
<dataset name="x"><frame number="0"><objectlist/></frame>
 <frame number="1"><objectlist>
  <object id="9"><orientation>90</orientation><box h="75.5" w="31" xc="514.5" yc="195.25"/></object>
  <object id="2"><box h="8" w="4" xc="5" yc="6"/></object></objectlist></frame>
 <frame number="2"/></dataset>)");
  ASSERT_EQ(steps.size(), 3U);
  EXPECT_EQ(personsOf(steps[1]), (std::vector<std::uint32_t>{2, 9}));
  EXPECT_EQ(*steps[1].observations[1].box2D, cv::Rect2d(499, 157.5, 31, 75.5));
}

TEST(Cvml, SaysInWhichLineItIsWrong) {
  const std::string head = "<dataset>\n<frame number=\"0\">\n<object id=\"1\">";
  const std::string tail = "</object></frame></dataset>";
  const auto error = [](const std::string& text) { return errorOf([&] { cvml(text); }); };
  EXPECT_EQ(error(head), "boxes.xml:3: not valid XML: Premature end of document.");
  EXPECT_EQ(error(head + "<box h=\"1\" w=\"1\" xc=\"1\"/>" + tail),
            "boxes.xml:3: the attribute yc is missing");
  EXPECT_EQ(error(head + "<box h=\"-1\" w=\"1\" xc=\"1\" yc=\"1\"/>" + tail),
            "boxes.xml:3: the box has a negative width or height");
  EXPECT_EQ(error(head + "<box h=\"nan\" w=\"1\" xc=\"1\" yc=\"1\"/>" + tail),
            "boxes.xml:3: h: a number is expected instead of \"nan\"");
  EXPECT_EQ(error("<dataset><frame number=\"1.5\"/></dataset>"),
            "boxes.xml:1: the frame number must be a whole number from 0 to 1000000000000000");
  EXPECT_EQ(error("<dataset name=\"" + std::string(3 << 20, 'x')),
            "boxes.xml:1: an element is longer than 1048576 bytes");
  std::string deep;
  for (int i = 0; i < 100; ++i) {
    deep += "<a>";
  }
  EXPECT_EQ(error(deep), "boxes.xml:1: elements are nested too deep");
}

TEST(InputFormats, AreRecognisedByContent) {
  const TempFolder folder;
  InputOptions options;
  options.homography = cv::Matx33d(0.1, 0, 0, 0, -0.1, 60, 0, 0.001, 1);
  const auto persons = [&](const std::string& file) {
    InputFrame frame;
    const OpenedInput input = openInput(file, options);
    return input.frames->next(frame) ? frame.actors.size() : -1;
  };
  EXPECT_EQ(persons(folder.write("a.dat", "1,1,10,20,5,9\n1,2,30,20,5,9\n")), 2);
  EXPECT_EQ(persons(folder.write("b.dat",
                                 "<?xml version=\"1.0\"?>\n<dataset><frame number=\"1\">"
                                 "<object id=\"1\"><box h=\"9\" w=\"5\" xc=\"10\" "
                                 "yc=\"20\"/></object></frame></dataset>")),
            1);
  EXPECT_EQ(persons(folder.write("c.dat", "{\"mobiles\": [], \"actors\": []}\n")), 0);
  const std::string neither = folder.write("d.dat", "hello\n");
  EXPECT_NE(errorOf([&] { openInput(neither, options); }).find("not an input"), std::string::npos);
  options.format = "mot";
  EXPECT_EQ(errorOf([&] { openInput(neither, options); }),
            neither + ":1: a number is expected instead of \"hello\"");
}

}  // namespace

}  // namespace grouptracker
