#include "host/run/ParameterFile.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

namespace grouptracker {

namespace {

ParameterFile read(const std::string& text) {
  std::istringstream in(text);
  return readParameterFile(in, "p.txt");
}

TEST(ParameterFile, TakesWhatTheTrackerTakes) {
  const ParameterFile plain = read(sampleParameters());
  EXPECT_FALSE(plain.problem) << plain.problem->what();
  EXPECT_EQ(plain.delay, 2U);
  EXPECT_FALSE(plain.needsImages);

  const ParameterFile oneLine = read(sampleParameters({{"temporalWinSize:", "+7"}}, ' ') + " tail");
  EXPECT_FALSE(oneLine.problem);
  EXPECT_EQ(oneLine.delay, 7U);
  EXPECT_EQ(read(sampleParameters({{"temporalWinSize:", "-1"}})).delay, 4294967295U);
  EXPECT_TRUE(read(sampleParameters({{"saveOutput:", "1"}})).needsImages);
  EXPECT_TRUE(read(sampleParameters({{"extDisplayOn:", "1"}})).needsImages);
}

TEST(ParameterFile, NamesTheLineAndWhatIsExpected) {
  const auto problem = [](const std::string& text) {
    const auto found = read(text).problem;
    return found ? std::string(found->what()) : "none";
  };
  EXPECT_EQ(problem(""),
            "p.txt:1: the file ends where the label \"coherenceThreshold:\" is expected");
  EXPECT_EQ(problem("coherenceThreshold: 1\n\ndistweight: 1\n"),
            "p.txt:3: the label \"distWeight:\" is expected instead of \"distweight:\"");
  EXPECT_EQ(problem(sampleParameters({{"useClustering:", "true"}})),
            "p.txt:22: 0 or 1 is expected after \"useClustering:\"");
  EXPECT_EQ(problem(sampleParameters({{"distWeight:", "1.5"}})),
            "p.txt:2: the label \"speedSimWeight:\" is expected instead of \".5\"");
  EXPECT_EQ(problem(sampleParameters({{"imagesFolder:", "my images/"}})),
            "p.txt:15: the label \"fileFormat:\" is expected instead of \"images/\"");
  EXPECT_EQ(problem(sampleParameters({{"temporalWinSize:", "4294967296"}})),
            "p.txt:9: a whole number is expected after \"temporalWinSize:\"");
  EXPECT_EQ(problem(sampleParameters({{"minNumCells:", ""}})),
            "p.txt:48: a whole number is expected after \"minNumCells:\"");
}

TEST(ParameterFile, GivesBackTheValuesAsTheyStandWithSomeReplaced) {
  const std::string text = sampleParameters({{"distWeight:", "+07"}, {"alpha:", "5e-1"}}, '\t');
  const ParameterFile file = read("\n" + text);
  EXPECT_EQ(file.find("distWeight:")->line, 2U);
  EXPECT_EQ(file.number("distWeight:"), 7.0);
  const ParameterFile copy = read(file.with({{"tolerance:", 0.25}}));
  ASSERT_EQ(copy.values.size(), file.values.size());
  for (std::size_t i = 0; i < file.values.size(); ++i) {
    const bool isReplaced = file.values[i].row->label == std::string("tolerance:");
    EXPECT_EQ(copy.values[i].text, isReplaced ? "0.25" : file.values[i].text);
    EXPECT_EQ(copy.values[i].line, i + 1);
  }
  EXPECT_EQ(copy.find("distWeight:")->text, "+07");
}

TEST(ParameterFile, TakesChangesAsTheTrackerWouldReadThem) {
  ParameterFile file = read(sampleParameters());
  file.set("temporalWinSize", "7");
  file.set("saveOutput:", "1");
  EXPECT_EQ(file.delay, 7U);
  EXPECT_TRUE(file.needsImages);
  file.set("saveOutput", "0");
  EXPECT_FALSE(file.needsImages);
  EXPECT_EQ(read(file.text()).number("temporalWinSize:"), 7.0);
  const auto problem = [&file](const char* label, const char* value) {
    return errorOf([&] { file.set(label, value); });
  };
  EXPECT_EQ(problem("tolerence", "1"), "tolerence is no parameter; did you mean tolerance?");
  EXPECT_EQ(problem("distWeight", "1.5"),
            "a whole number is expected after \"distWeight:\" instead of \"1.5\"");
  EXPECT_EQ(problem("useClustering", "true"), "0 or 1 is expected after \"useClustering:\"");
  EXPECT_EQ(problem("imagesFolder", "my images"),
            "a text without blanks is expected after \"imagesFolder:\" instead of \"my images\"");
  EXPECT_EQ(problem("alpha", ""), "a number is expected after \"alpha:\"");
  EXPECT_EQ(file.number("distWeight:"), read(sampleParameters()).number("distWeight:"));
}

TEST(ParameterFile, MayHaveCommentsBehindItsValuesOnly) {
  EXPECT_FALSE(read(sampleParameters() + "# tuned on a square\n").problem);
  const auto problem = read("# tuned on a square\n" + sampleParameters()).problem;
  ASSERT_TRUE(problem);
  EXPECT_STREQ(problem->what(),
               "p.txt:1: the label \"coherenceThreshold:\" is expected instead of \"#\"; comments "
               "stand behind the last value only");
}

TEST(ParameterFile, LeavesPipesAloneAndReportsMissingFiles) {
  EXPECT_EQ(errorOf([] { readValidParameterFile("/no/such.txt"); }),
            "/no/such.txt:1: cannot be opened: No such file or directory; the label "
            "\"coherenceThreshold:\" is expected");
  EXPECT_EQ(errorOf([] { readParameterFile("/dev/null"); }),
            "/dev/null: the parameters must be in a regular file");
  const TempFolder folder;
  const std::string endless = folder.write("p.txt", "");
  std::filesystem::resize_file(endless, 1ULL << 40U);
  EXPECT_EQ(errorOf([&] { readParameterFile(endless); }),
            endless + ": is longer than 1 MiB, so it holds no parameters");
}

}  // namespace

}  // namespace grouptracker
