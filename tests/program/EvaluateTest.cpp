#include "tests/support/base/Texts.h"
#include "tests/support/program/Program.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace grouptracker {

namespace {

using testing::HasSubstr;

/// Persons 1 and 2 walk together, 3 comes the other way; the groups of a run that took 3 for one of
/// them from the eleventh of twenty frames on.
class Evaluate : public testing::Test {
 protected:
  Evaluate() {
    std::filesystem::create_directory(folder.path() / "walk");
    std::string rows;
    std::string groups;
    for (int frame = 1; frame <= frames; ++frame) {
      const double way = 0.5 * frame;
      rows += fmt::format("{0} 1 {1} 0 0 0 0 0\n{0} 2 {1} 0 0.7 0 0 0\n{0} 3 {2} 0 5 0 0 0\n",
                          frame, way, 20.0 - way);
      groups += fmt::format(
          R"({{"frame": {0}, "reportedFrame": {0}, "inputFrame": {0}, "persons": [1, 2, 3], )"
          R"("groups": [{{"id": 0, "persons": [1, 2{1}], "properties": {{"Visible": true}}}}]}})"
          "\n",
          frame, frame > frames / 2 ? ", 3" : "");
    }
    folder.write("walk/obsmat.txt", rows);
    folder.write("walk/H.txt", "1 0 0\n0 1 0\n0 0 1\n");
    folder.write("walk/groups.txt", "1 2\n");
    folder.write("groups.jsonl", groups);
  }
  std::string text(const std::string& name) const { return textOf(folder.path() / name); }

  static constexpr int frames = 20;
  const TempFolder folder;
  Program program{folder.path()};
};

TEST_F(Evaluate, PrintsTheScoresAndWritesThemAndTheErrors) {
  EXPECT_EQ(program.run({"evaluate", "groups.jsonl", "--truth", "walk/groups.txt", "--window", "10",
                         "--together", "5", "--baselines", "--output", "scores.json", "--errors",
                         "errors.csv"}),
            0)
      << program.errors();
  EXPECT_THAT(program.output(), HasSubstr("group MITRE, 2 windows "));
  EXPECT_THAT(program.output(),
              HasSubstr("  crude rule over the window           1.000     1.000     1.000"));
  const auto scores = nlohmann::json::parse(text("scores.json"));
  EXPECT_EQ(scores["steps"], frames);
  EXPECT_EQ(scores["windowedMitre"]["f1"], 0.75) << "1 in the first window, a half in the second";
  EXPECT_EQ(scores["pairs"]["recall"], 1.0);
  const auto errors = linesOf(text("errors.csv"));
  ASSERT_EQ(errors.size(), 1U + 3U * frames / 2);
  EXPECT_EQ(errors[1], "11,1,wrong companions,,3");
  EXPECT_EQ(errors[3], "11,3,not a member,,1 2");
}

TEST_F(Evaluate, PutsTwoRunsSideBySide) {
  folder.write("half.jsonl",
               text("groups.jsonl").substr(0, text("groups.jsonl").find("{\"frame\": 11,")));
  EXPECT_EQ(program.run({"evaluate", "groups.jsonl", "--truth", "walk/groups.txt", "--window", "10",
                         "--compare", "half.jsonl"}),
            0)
      << program.errors();
  EXPECT_THAT(program.output(),
              HasSubstr("group MITRE, 2 windows                 0.750     1.000    -0.250"));
}

TEST_F(Evaluate, RefusesATruthForOtherPeople) {
  folder.write("others.txt", "10 11\n");
  EXPECT_EQ(program.run({"evaluate", "groups.jsonl", "--truth", "others.txt"}), 2);
  EXPECT_EQ(program.errors(),
            "others.txt:1: no group has two members in view together in groups.jsonl\n");
}

TEST_F(Evaluate, SaysThatStandardOutputCannotBeWritten) {
  program.process().setStandardOutputFile("/dev/full");
  EXPECT_EQ(program.run({"evaluate", "groups.jsonl", "--truth", "walk/groups.txt"}), 4);
  EXPECT_EQ(program.errors(), "standard output: cannot be written: No space left on device\n");
}

TEST_F(Evaluate, NamesTheLineThatIsWrong) {
  folder.write("groups.jsonl", text("groups.jsonl") + "{\"frame\": 21");
  EXPECT_EQ(program.run({"evaluate", "groups.jsonl", "--truth", "walk/groups.txt"}), 2);
  EXPECT_EQ(program.errors(), "groups.jsonl:21: not valid JSON\n");
}

}  // namespace

}  // namespace grouptracker
