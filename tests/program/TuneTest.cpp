#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace grouptracker {

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

/// Two who walk together and one who walks the other way.
std::string walkers() {
  std::ostringstream text;
  for (int frame = 0; frame < 40; ++frame) {
    text << frame << " 1 " << 0.5 * frame << " 0 0 0 0 0\n";
    text << frame << " 2 " << 0.5 * frame << " 0 0.7 0 0 0\n";
    text << frame << " 3 " << 20 - 0.5 * frame << " 0 5 0 0 0\n";
  }
  return text.str();
}

class Tune : public testing::Test {
 protected:
  Tune() {
    std::filesystem::create_directory(m_folder.path() / "walk");
    m_folder.write("walk/obsmat.txt", walkers());
    m_folder.write("walk/H.txt", "1 0 0\n0 1 0\n0 0 1\n");
    m_folder.write("walk/groups.txt", "1 2\n");
    m_folder.write("base.txt", sampleParameters({}));
    m_folder.write("space.txt", "coherenceThreshold: 0.1 20 logarithmic\n--own-links 1 5 whole\n");
  }
  int tune(const QString& name, const QStringList& more) {
    Program program(m_folder.path().string());
    return program.run(QStringList{"tune", "walk:walk/groups.txt", "--base", "base.txt", "--space",
                                   "space.txt", "--trials", "14", "--output", name + ".txt",
                                   "--log", name + ".csv"} +
                       more);
  }
  std::string read(const std::string& name) const { return textOf(m_folder.path() / name); }
  std::vector<std::string> sortedLog(const std::string& name) const {
    auto lines = linesOf(read(name + ".csv"));
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  TempFolder m_folder;
};

TEST_F(Tune, FindsTheSameWithAnyNumberOfJobsAndWhenItIsResumed) {
  ASSERT_EQ(tune("one", {}), 0);
  ASSERT_EQ(tune("two", {"--jobs", "2"}), 0);
  EXPECT_EQ(read("one.txt"), read("two.txt"));
  EXPECT_EQ(sortedLog("one"), sortedLog("two"));

  const auto lines = linesOf(read("one.csv"));
  ASSERT_EQ(lines.size(), 15U);
  m_folder.write("cut.csv", lines[0] + "\n" + lines[1] + "\n" + lines[5] + "\n");
  ASSERT_EQ(tune("cut", {"--resume"}), 0);
  EXPECT_EQ(read("cut.txt"), read("one.txt"));
  EXPECT_EQ(sortedLog("cut"), sortedLog("one"));
}

TEST_F(Tune, SaysWhetherTheBaseIsBetterAndHowToPassTheLinks) {
  Program program(m_folder.path().string());
  // The base is good, and nothing that is tried holds anybody together.
  m_folder.write("space.txt", "coherenceThreshold: 0.0001 0.0002 linear\n--own-links 1 2 whole\n");
  ASSERT_EQ(program.run({"tune", "walk:walk/groups.txt", "--base", "base.txt", "--space",
                         "space.txt", "--trials", "4", "--output", "worse.txt", "--quiet"}),
            0);
  const auto lines = linesOf(program.output());
  ASSERT_EQ(lines.size(), 5U) << program.output();
  EXPECT_THAT(lines[0], MatchesRegex("windowed +base +found"));
  EXPECT_THAT(lines[1], MatchesRegex("walk +1.000 +0.[0-9]+"));
  EXPECT_THAT(lines[3], "the base is better");
  EXPECT_THAT(lines[4], MatchesRegex("pass to run with worse.txt: --own-links [12]"));
  EXPECT_THAT(read("worse.txt"), HasSubstr("\n# found together with these options of run: --own-"));
  Program again(m_folder.path().string());
  EXPECT_NE(again.run({"check", "walk", "--parameters", "worse.txt"}), 2) << again.output();
}

TEST_F(Tune, SaysWhatIsWrongWithItsInput) {
  m_folder.write("space.txt", "coherenceTreshold: 1 2 whole\n");
  Program program(m_folder.path().string());
  EXPECT_EQ(program.run({"tune", "walk:walk/groups.txt", "--base", "base.txt", "--space",
                         "space.txt", "--output", "x.txt"}),
            2);
  EXPECT_EQ(program.errors(),
            "coherenceTreshold:: neither a parameter nor a link option; did you mean "
            "coherenceThreshold:?\n");
  m_folder.write("base.txt", "coherenceThreshold: 4\n");
  EXPECT_EQ(tune("x", {}), 2);
}

}  // namespace

}  // namespace grouptracker
