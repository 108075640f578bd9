#include "tests/support/base/Texts.h"
#include "tests/support/program/Program.h"

#include <QStringList>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace grouptracker {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Persons 1 and 2 walk together, 3 comes the other way.
class Evidence : public testing::Test {
 protected:
  Evidence() {
    std::filesystem::create_directory(folder.path() / "walk");
    std::string rows;
    for (int frame = 1; frame <= 40; ++frame) {
      const double way = 0.5 * frame;
      rows += fmt::format("{0} 1 {1} 0 0 0 0 0\n{0} 2 {1} 0 0.7 0 0 0\n{0} 3 {2} 0 1.5 0 0 0\n",
                          frame, way, 20.0 - way);
    }
    folder.write("walk/obsmat.txt", rows);
    folder.write("walk/H.txt", "1 0 0\n0 1 0\n0 0 1\n");
    folder.write("walk/groups.txt", "1 2\n");
  }
  std::string text(const std::string& name) const { return textOf(folder.path() / name); }

  const TempFolder folder;
  Program program{folder.path()};
};

TEST_F(Evidence, IsLearnedAndThenUsed) {
  const QStringList learn{
      "learn",   "walk:walk/groups.txt:2.5", "--ridge",    "1", "--output", "model.json",
      "--quiet", "--calibration-picture",    "picture.svg"};
  EXPECT_EQ(program.run(learn), 0) << program.errors();
  EXPECT_EQ(program.errors(), "");
  EXPECT_THAT(program.output(), HasSubstr("walk "));
  EXPECT_THAT(text("model.json"), HasSubstr(R"("learnedFrom": ["walk"])"));
  EXPECT_THAT(text("picture.svg"), StartsWith("<svg"));
  const std::string first = text("model.json");
  EXPECT_EQ(program.run(learn), 0);
  EXPECT_EQ(text("model.json"), first);
  EXPECT_EQ(program.run({"explain", "walk", "--persons", "2", "1", "--model", "model.json"}), 0)
      << program.errors();
  EXPECT_THAT(program.output(), HasSubstr(": together, group 1\n"));
}

TEST_F(Evidence, IsNotLearnedFromWhatDoesNotFit) {
  folder.write("walk/others.txt", "8 9\n");
  EXPECT_EQ(program.run({"learn", "walk:walk/others.txt", "--output", "model.json"}), 2);
  EXPECT_THAT(
      program.errors(),
      testing::EndsWith("walk/others.txt:1: no group has two members in view together in walk\n"));
  EXPECT_EQ(program.run({"learn", "walk", "--output", "model.json"}), 2);
  EXPECT_THAT(program.errors(), HasSubstr("\nwalk: INPUT:TRUTH is expected"));
  EXPECT_EQ(program.run({"learn", "walk:walk/groups.txt:0", "--output", "model.json"}), 2);
  EXPECT_THAT(program.errors(),
              testing::EndsWith("\nwalk:walk/groups.txt:0: the rate must be above 0\n"));
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "model.json"));
}

TEST_F(Evidence, IsExplainedForPeopleWhoAreThere) {
  EXPECT_EQ(program.run({"explain", "walk", "--persons", "1", "3"}), 0) << program.errors();
  EXPECT_THAT(program.output(), StartsWith("Persons 1 and 3 are in view together"));
  EXPECT_EQ(program.run({"explain", "walk", "--persons", "1", "30"}), 2);
  EXPECT_THAT(program.errors(), testing::EndsWith("walk: has no person 30\n"));
  folder.write("named.csv",
               "frame,id,x,y\n1,anna,0,0\n1,3000000000,0,1\n2,anna,1,0\n2,3000000000,1,1\n");
  Program named(folder.path());
  EXPECT_EQ(named.run({"explain", "named.csv", "--persons", "anna", "3000000000"}), 0)
      << named.errors();
  EXPECT_THAT(named.output(), StartsWith("Persons anna and 3000000000 are in view together"));
}

}  // namespace

}  // namespace grouptracker
