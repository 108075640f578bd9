#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace grouptracker {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// `grouptracker run` of somebody who says as little as possible, in a folder with a scene of 12
/// frames.
class FirstRun : public testing::Test {
 protected:
  FirstRun() { folder.write("scene.jsonl", walkingScene(12)); }

  /// Runs with a cache of its own; `said` holds standard error.
  int run(const QStringList& arguments, const std::string& within = "") {
    Program program(folder.path() / within);
    useCache(program);
    const int status = program.run(arguments);
    said = program.errors();
    printed = program.output();
    return status;
  }
  /// The same with a terminal for all streams, as `script` of util-linux makes one.
  int runOnTerminal(const std::string& arguments) {
    Program terminal(folder.path());
    useCache(terminal);
    terminal.process().start(
        "script", {"-qec", QString::fromStdString(Program::path() + " " + arguments), "/dev/null"});
    const int status = terminal.finish();
    printed = terminal.output();
    return status;
  }
  std::string text(const std::string& name) const { return textOf(folder.path() / name); }
  std::set<std::string> files() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
      names.insert(entry.path().filename());
    }
    names.erase("cache");
    return names;
  }
  static std::string withoutFirstLine(const std::string& lines) {
    return lines.substr(lines.find('\n') + 1);
  }

  const TempFolder folder;
  std::string said;
  std::string printed;

 private:
  void useCache(Program& program) const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_CACHE_HOME", QString::fromStdString(folder.path() / "cache"));
    program.process().setProcessEnvironment(environment);
  }
};

TEST_F(FirstRun, WritesTheGroupsUnderTheNameOfTheInputIntoTheWorkingFolder) {
  ASSERT_EQ(run({"run", "scene.jsonl"}), 0) << said;
  const std::string groups = text("scene.groups.jsonl");
  EXPECT_EQ(linesOf(groups).size(), 12U);
  EXPECT_THAT(said, HasSubstr("written to scene.groups.jsonl"));
  EXPECT_THAT(printed, StartsWith("parameter file name: ")) << "where no terminal is";
  EXPECT_TRUE(std::filesystem::exists(folder.path() / "metasimages.txt"));

  folder.write("scene.groups.jsonl", linesOf(groups)[0] + "\n");
  ASSERT_EQ(run({"run", "scene.jsonl"}), 0) << "replaces the groups of yesterday";
  EXPECT_EQ(text("scene.groups.jsonl"), groups);

  std::filesystem::create_directory(folder.path() / "elsewhere");
  ASSERT_EQ(run({"run", "../scene.jsonl", "--quiet"}, "elsewhere"), 0) << said;
  EXPECT_EQ(text("elsewhere/scene.groups.jsonl"), groups);

  std::filesystem::create_directory(folder.path() / "walk.1");
  folder.write("walk.1/obsmat.txt", "1 1 0 0 0 0 0 0\n2 1 0 0 0 0 0 0\n");
  folder.write("nobody.csv", "frame,id,x,y\n");
  ASSERT_EQ(run({"run", "nobody.csv"}), 0);
  EXPECT_THAT(said, HasSubstr("nobody.csv: warning: it holds no frame\n"));
  ASSERT_EQ(run({"run", "walk.1/"}), 0) << said;
  EXPECT_EQ(linesOf(text("walk.1.groups.jsonl")).size(), 2U);
}

TEST_F(FirstRun, ReplacesNothingButGroupsThatNobodyNamed) {
  for (const std::string other : {"my notes\n", R"({"frame": 2, "reportedFrame": 1})"}) {
    folder.write("scene.groups.jsonl", other);
    EXPECT_EQ(run({"run", "scene.jsonl"}), 4);
    EXPECT_EQ(said,
              "scene.groups.jsonl: is no groups file, so it is not replaced; --output names "
              "another\n");
    EXPECT_EQ(text("scene.groups.jsonl"), other);
  }
  std::filesystem::remove(folder.path() / "scene.groups.jsonl");
  EXPECT_EQ(run({"run", "-"}), 2);
  EXPECT_THAT(said, StartsWith("--output: a file for the groups is expected"));
  EXPECT_EQ(run({"run", "scene.jsonl", "--events", "e.jsonl", "--mobile-dump", "none"}), 0);
  EXPECT_EQ(files(), (std::set<std::string>{"scene.jsonl", "e.jsonl"}));
}

TEST_F(FirstRun, SharesNoFileThatNobodyNamed) {
  Program redirected(folder.path());
  redirected.process().setStandardOutputFile(
      QString::fromStdString(folder.path() / "scene.groups.jsonl"));
  EXPECT_EQ(redirected.run({"run", "scene.jsonl"}), 4);
  EXPECT_EQ(redirected.errors(), "scene.groups.jsonl: would overwrite standard output\n");
  EXPECT_EQ(run({"run", "/dev/stdin"}), 2) << "which is no name for groups";
}

TEST_F(FirstRun, OnATerminalTellsWhatWasFoundAndNoMore) {
  if (std::system("command -v script > /dev/null") != 0) {
    GTEST_SKIP() << "nothing makes a terminal";
  }
  ASSERT_EQ(runOnTerminal("run scene.jsonl"), 0) << printed;
  EXPECT_EQ(files(), (std::set<std::string>{"scene.jsonl", "scene.groups.jsonl"}));
  EXPECT_THAT(printed, Not(HasSubstr("parameter file name")));
  EXPECT_THAT(printed, HasSubstr("12 frames, 3 people, 1 group, 1 event in "));
  EXPECT_THAT(printed, HasSubstr(", written to scene.groups.jsonl"));

  ASSERT_EQ(runOnTerminal("run scene.jsonl --diagnostics - --mobile-dump dump.txt"), 0);
  EXPECT_THAT(printed, HasSubstr("parameter file name"));
  EXPECT_THAT(text("dump.txt"), Not(testing::IsEmpty()));
}

TEST_F(FirstRun, ChangesParametersWithoutAFileAndWritesThemAsOne) {
  folder.write("p.txt", sampleParameters());
  const QStringList changes{"--set", "coherenceThreshold=3.5", "--set", "temporalWinSize:=3"};
  for (const QStringList& base :
       {QStringList{"--rate", "10"}, QStringList{"--parameters", "p.txt"}}) {
    const QStringList outputs{"--actors", "a.jsonl", "--mobile-dump", "none"};
    const QStringList start{"run", "scene.jsonl"};
    ASSERT_EQ(run(start + base + changes + outputs), 0) << said;
    const std::string actors = text("a.jsonl");
    const std::string lines = withoutFirstLine(printed);
    EXPECT_THAT(actors, HasSubstr(R"({"frame": 12, "reportedFrame": 9, )"));

    ASSERT_EQ(run(start + base + changes + QStringList{"--print-parameters"}), 0) << said;
    EXPECT_THAT(printed, StartsWith("coherenceThreshold:      3.5\n"));
    folder.write("q.txt", printed);
    ASSERT_EQ(run(start + QStringList{"--parameters", "q.txt"} + outputs), 0) << said;
    EXPECT_TRUE(text("a.jsonl") == actors);
    EXPECT_TRUE(withoutFirstLine(printed) == lines);
  }
  EXPECT_EQ(run({"run", "--print-parameters", "--rate", "10"}), 0) << "needs no input";
  EXPECT_THAT(printed, HasSubstr("\ntemporalWinSize:         25\n"));
  EXPECT_EQ(run({"run", "scene.jsonl", "--set", "temporalWinSise=3"}), 2);
  EXPECT_EQ(said, "--set: temporalWinSise is no parameter; did you mean temporalWinSize?\n");
  EXPECT_EQ(run({"run", "scene.jsonl", "--set", "temporalWinSize"}), 2);
  EXPECT_EQ(said, "--set: label=value is expected instead of temporalWinSize\n");
}

TEST_F(FirstRun, TakesNumbersOfPixelsAsPeopleWriteThem) {
  const QStringList arguments{"run", "scene.jsonl", "--output", "g.jsonl", "--max-pixels"};
  for (const char* pixels : {"400", "50M", "8000x6000"}) {
    EXPECT_EQ(run(arguments + QStringList{pixels}), 0) << said;
  }
  for (const char* pixels : {"0", "M", "4kM", "-1", "9999999999G"}) {
    EXPECT_EQ(run(arguments + QStringList{pixels}), 2) << pixels;
    EXPECT_THAT(said, StartsWith("--max-pixels: such as 50000000, 50M or 8000x6000 is expected;"));
  }
}

// All that a mistake may cost is the time to mend it.
TEST_F(FirstRun, WithAnOutputThatCannotBeSaysThatTheOthersAreNotComplete) {
  const QStringList arguments{"run", "scene.jsonl", "--status", "s.json", "--graph", "-"};
  ASSERT_EQ(run(arguments + QStringList{"--output", "g.jsonl"}), 0) << said;
  EXPECT_THAT(printed, StartsWith("digraph"));
  EXPECT_THAT(text("s.json"), HasSubstr("true"));
  EXPECT_EQ(run(arguments + QStringList{"--output", "g.jsonl", "--csv", "nowhere/x.csv"}), 4);
  EXPECT_THAT(text("s.json"), HasSubstr("false"));

  folder.write("events.jsonl", "of yesterday\n");
  EXPECT_EQ(run({"events", "nothing.jsonl", "--output", "events.jsonl"}), 2);
  EXPECT_EQ(text("events.jsonl"), "of yesterday\n");
}

TEST_F(FirstRun, WithAMistakeLeavesTheGroupsOfYesterday) {
  const std::string yesterday = "{\"header\": {}}\n";
  folder.write("g.jsonl", yesterday);
  folder.write("p.txt", sampleParameters({{"useClustering:", "true"}}));
  folder.write("camera.yml", "%YAML:1.0\n---\nhomography: 3\n");
  folder.write("cut.jsonl", walkingLine(1).substr(0, 90));
  folder.write("empty.csv", "");
  folder.write("cut.csv", "frame,id,x,y\n1,1,0,0\n2,1,zero,0\n");
  struct Mistake {
    QStringList arguments;
    int status;
    std::string message;
  };
  const std::vector<Mistake> mistakes{
      {{"scene.jsonl", "--parameters", "p.txt"}, 1, "p.txt:22: 0 or 1 is expected after"},
      {{"scene.jsonl", "--parameters", "none.txt"}, 1, "none.txt:1: cannot be opened"},
      {{"scene.jsonl", "--calibration", "camera.yml"}, 2, "camera.yml"},
      {{"scene.jsonl", "--calibration", "none.yml"}, 2, "none.yml"},
      {{"scene.jsonl", "--context", "p.txt"}, 2, "p.txt"},
      {{"none.jsonl"}, 2, "none.jsonl: "},
      {{"empty.csv"}, 2, "empty.csv: is empty"},
      {{"."}, 2, ".: not an input itself, but in this folder there is cut.jsonl, "},
      {{"cut.jsonl"}, 2, "cut.jsonl:1: "},
      {{"cut.csv"}, 2, "cut.csv:3: "}};
  for (const auto& [arguments, status, message] : mistakes) {
    EXPECT_EQ(run(QStringList{"run", "--output", "g.jsonl", "--mobile-dump", "d.txt"} + arguments),
              status)
        << message;
    EXPECT_THAT(said, StartsWith(message));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    EXPECT_EQ(printed, "");
    EXPECT_EQ(text("g.jsonl"), yesterday);
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "d.txt"));
  }
}

}  // namespace

}  // namespace grouptracker
