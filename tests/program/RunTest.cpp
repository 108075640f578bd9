#include "tests/support/base/Texts.h"
#include "tests/support/host/GroupsSchema.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

namespace grouptracker {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// `grouptracker run` in a folder with a parameter file and a scene of 12 frames.
class Run : public testing::Test {
 protected:
  Run() {
    folder.write("p.txt", sampleParameters());
    folder.write("scene.jsonl", walkingScene(sceneLength));
  }

  static QStringList arguments(const QString& input, const QStringList& more = {}) {
    return QStringList{"run",      input,          "--parameters", "p.txt",
                       "--output", "groups.jsonl", "--actors",     "actors.jsonl"} +
           more;
  }
  std::filesystem::path inFolder(const std::string& name) const { return folder.path() / name; }
  std::string text(const std::string& name) const { return textOf(inFolder(name)); }
  std::vector<std::string> groups() const { return linesOf(text("groups.jsonl")); }
  std::vector<std::string> actors() const { return linesOf(text("actors.jsonl")); }

  static constexpr int sceneLength = 12;
  const TempFolder folder;
  Program program{inFolder("")};
};

TEST_F(Run, WritesTheGroupsOfASceneAndWhatTheProcessPutsOut) {
  EXPECT_EQ(program.run(arguments("scene.jsonl")), 0);
  ASSERT_EQ(groups().size(), std::size_t{sceneLength}) << "of the last frames, too";
  EXPECT_EQ(groupsFault(text("groups.jsonl")), "");
  EXPECT_THAT(groups()[11], StartsWith(R"({"frame": 12, "time": null, "groups": [{"id": 1, )"
                                       R"("members": [1, 2], "since": )"));
  EXPECT_THAT(groups()[11], EndsWith(R"(}], "alone": [3]})"));
  ASSERT_EQ(actors().size(), std::size_t{sceneLength});
  EXPECT_EQ(actors()[0], R"({"frame": 1, "reportedFrame": -1, "inputFrame": null, )"
                         R"("persons": [], "groups": []})");
  EXPECT_THAT(actors()[11], StartsWith(R"({"frame": 12, "reportedFrame": 10, "inputFrame": 10, )"
                                       R"("persons": [1, 2, 3], "groups": [{"id": 0, )"
                                       R"("mobiles": [101, 102], "persons": [1, 2], )"));
  EXPECT_THAT(program.output(), StartsWith("parameter file name: p.txt\n"));
  EXPECT_THAT(program.errors(), StartsWith("12 frames, 3 people, 1 group, 1 event in "));
  EXPECT_TRUE(std::filesystem::exists(inFolder("metasimages.txt")));
}

TEST_F(Run, NeedsNoParametersButARateOfItsOwn) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("XDG_CACHE_HOME", QString::fromStdString(inFolder("cache")));
  program.process().setProcessEnvironment(environment);
  EXPECT_EQ(program.run({"run", "scene.jsonl", "--rate", "2.5", "--output", "groups.jsonl",
                         "--mobile-dump", "none"}),
            0);
  EXPECT_THAT(program.output(), HasSubstr("cache/grouptracker-parameters-2.5.txt\n"));
  ASSERT_EQ(groups().size(), std::size_t{sceneLength});
  EXPECT_THAT(groups()[11], StartsWith(R"({"frame": 12, "time": 4.8, "groups": [{"id": 1, )"));
}

TEST_F(Run, RefusesWhatGivesNoGroupsAndLeavesOlderOnes) {
  folder.write("groups.jsonl", "of an earlier run\n");
  folder.write("model.json", "{\"flags\": {}}");
  const auto errorsOf = [this](const QStringList& more) {
    Program attempt(inFolder(""));
    EXPECT_EQ(attempt.run(arguments("scene.jsonl", more)), 2);
    return attempt.errors();
  };
  EXPECT_EQ(errorsOf({"--rate", "0"}),
            "--rate: a number above 0 is expected; see grouptracker run --help\n");
  EXPECT_THAT(errorsOf({"--look-ahead", "nan"}), StartsWith("--look-ahead: 0 to 60 seconds"));
  EXPECT_THAT(errorsOf({"--look-ahead", "-1"}), StartsWith("--look-ahead: 0 to 60 seconds"));
  EXPECT_EQ(errorsOf({"--model", "model.json"}), "model.json:1: \"flags\" lacks \"intercept\"\n");
  EXPECT_EQ(text("groups.jsonl"), "of an earlier run\n");
}

TEST_F(Run, SendsDiagnosticsAndDumpWhereTheUserWantsThem) {
  program.run(arguments("scene.jsonl"));
  const std::string diagnostics = program.output();
  const std::string dump = text("metasimages.txt");
  const auto expected = actors();
  std::filesystem::remove(inFolder("metasimages.txt"));

  Program redirected(inFolder(""));
  EXPECT_EQ(redirected.run(arguments("scene.jsonl", {"--diagnostics", "lines.txt", "--mobile-dump",
                                                     "dump.txt", "--quiet"})),
            0);
  EXPECT_EQ(redirected.output() + redirected.errors(), "");
  EXPECT_EQ(text("lines.txt"), diagnostics);
  EXPECT_EQ(text("dump.txt"), dump);
  EXPECT_EQ(actors(), expected);

  Program silent(inFolder(""));
  EXPECT_EQ(
      silent.run(arguments("scene.jsonl", {"--diagnostics", "none", "--mobile-dump", "none"})), 0);
  EXPECT_EQ(silent.output(), "");
  EXPECT_EQ(actors(), expected);
  EXPECT_FALSE(std::filesystem::exists(inFolder("metasimages.txt")));
}

TEST_F(Run, AnswersALiveTrackerFrameByFrame) {
  program.start(arguments("-"));
  for (int frame = 1; frame <= 3; ++frame) {
    program.process().write(QByteArray::fromStdString(walkingLine(frame)));
    program.process().waitForBytesWritten();
    const auto answered = [&] { return actors().size() == static_cast<std::size_t>(frame); };
    ASSERT_TRUE(program.waitUntil(answered)) << frame;
  }
  EXPECT_EQ(program.finish(), 0);
}

TEST_F(Run, StopsInOrderWhenAskedWhileWaitingForInput) {
  for (const int signal : {SIGINT, SIGTERM}) {
    std::filesystem::remove(inFolder("actors.jsonl"));
    Program live(inFolder(""));
    live.start(arguments("-"));
    live.process().write(QByteArray::fromStdString(walkingLine(1) + R"({"mobiles": [{"id")"));
    live.process().waitForBytesWritten();
    ASSERT_TRUE(live.waitUntil([&] { return actors().size() == 1; }));
    live.send(signal);
    ASSERT_TRUE(live.process().waitForFinished());
    EXPECT_EQ(live.finish(), 128 + signal);
    EXPECT_THAT(live.errors(), HasSubstr(signal == SIGINT ? "stopped by SIGINT" : "SIGTERM"));
    EXPECT_THAT(text("groups.jsonl"), EndsWith("}\n"));
  }
}

TEST_F(Run, GoesOnWhenNobodyReadsStandardOutput) {
  QProcess reader;
  program.process().setStandardOutputProcess(&reader);
  program.start(arguments("-"));
  reader.start("true", QStringList());
  ASSERT_TRUE(reader.waitForFinished());
  program.process().write(QByteArray::fromStdString(walkingScene(3)));
  program.process().waitForBytesWritten();
  EXPECT_EQ(program.finish(), 5);
  EXPECT_THAT(program.errors(), StartsWith("standard output: warning: its reader has left;"));
  EXPECT_THAT(text("groups.jsonl"), EndsWith("}\n"));
}

TEST_F(Run, ReportsAFullDisk) {
  QStringList toFullDisk = arguments("scene.jsonl");
  toFullDisk[5] = "/dev/full";
  EXPECT_EQ(program.run(toFullDisk), 4);
  EXPECT_EQ(program.errors(), "/dev/full: cannot be written: No space left on device\n");

  Program chatty(inFolder(""));
  chatty.process().setStandardOutputFile("/dev/full");
  EXPECT_EQ(chatty.run(arguments("scene.jsonl")), 4);
  EXPECT_EQ(chatty.errors(), "standard output: cannot be written: No space left on device\n");
}

TEST_F(Run, NeedsNobodyWhoHearsItsWords) {
  program.process().setStandardErrorFile("/dev/full");
  EXPECT_EQ(program.run(arguments("scene.jsonl")), 0);
  EXPECT_EQ(groups().size(), std::size_t{sceneLength});
  Program wrong(inFolder(""));
  wrong.process().setStandardErrorFile("/dev/full");
  EXPECT_EQ(wrong.run(arguments("none.jsonl")), 2);
}

TEST_F(Run, WritesNothingIntoItsFilesThatIsMeantForAClosedStream) {
  const QStringList silent = arguments("scene.jsonl", {"--diagnostics", "none"});
  EXPECT_EQ(program.run(silent), 0);
  const std::vector<std::string> files{"groups.jsonl", "actors.jsonl", "metasimages.txt"};
  std::vector<std::string> expected;
  for (const std::string& file : files) {
    expected.push_back(text(file));
    std::filesystem::remove(inFolder(file));
  }
  Program closed(inFolder(""));
  closed.process().start("sh", QStringList{"-c", R"(exec "$0" "$@" >&- 2>&-)",
                                           QString::fromStdString(Program::path())} +
                                   silent);
  closed.process().waitForStarted();
  EXPECT_EQ(closed.finish(), 0);
  for (std::size_t i = 0; i < files.size(); ++i) {
    EXPECT_EQ(text(files[i]), expected[i]) << files[i];
  }
}

TEST_F(Run, SaysBesideItsOutputsWhetherTheyAreComplete) {
  EXPECT_EQ(program.run(arguments("scene.jsonl", {"--status", "status.json"})), 0);
  EXPECT_EQ(text("status.json"), "{\"complete\": true, \"frames\": 12}\n");
  folder.write("scene.jsonl", walkingScene(3) + walkingLine(4).substr(0, 100));
  Program cut(inFolder(""));
  EXPECT_EQ(cut.run(arguments("scene.jsonl", {"--status", "status.json"})), 2);
  EXPECT_EQ(text("status.json"), "{\"complete\": false, \"frames\": 0}\n");
}

TEST_F(Run, NamesTheLineOfDamagedInputAndKeepsWhatWasDone) {
  folder.write("cut.jsonl", walkingScene(3) + walkingLine(4).substr(0, 100));
  EXPECT_EQ(program.run(arguments("cut.jsonl")), 2);
  EXPECT_EQ(program.errors(), "cut.jsonl:4: not valid JSON\n");
  EXPECT_EQ(groups().size(), 3U);
  EXPECT_EQ(actors().size(), 3U);
  EXPECT_THAT(text("groups.jsonl"), EndsWith("}\n"));
}

// The matrix of trajectories has no rows for displacements over a window of one frame.
TEST_F(Run, StopsAtOrSkipsFramesAtWhichTheProcessFails) {
  folder.write("p.txt", sampleParameters({{"useClustering:", "1"}, {"temporalWinSize:", "1"}}));
  EXPECT_EQ(program.run(arguments("scene.jsonl")), 3);
  EXPECT_EQ(program.errors(), "frame 2: matrixT::operator(): Index out of range!\n");
  EXPECT_EQ(actors().size(), 1U);
  EXPECT_EQ(groups().size(), 2U) << "they do not depend on the process";
  EXPECT_THAT(program.output(), HasSubstr("Frame 2"));

  Program patient(inFolder(""));
  EXPECT_EQ(patient.run(arguments("scene.jsonl", {"--on-error", "skip"})), 0);
  EXPECT_THAT(patient.errors(), HasSubstr(", 11 frames skipped"));
}

TEST_F(Run, RefusesToOverwriteItsInput) {
  const std::string scene = text("scene.jsonl");
  EXPECT_EQ(program.run(arguments("scene.jsonl", {"--diagnostics", "./scene.jsonl"})), 4);
  EXPECT_EQ(program.errors(), "./scene.jsonl: would overwrite scene.jsonl\n");
  EXPECT_EQ(text("scene.jsonl"), scene);
}

TEST_F(Run, RunsOnPartOfATrajectoryFolder) {
  std::filesystem::create_directory(inFolder("walk"));
  std::string rows;
  for (int frame = 100; frame <= 200; frame += 10) {
    for (int person = 1; person <= 2; ++person) {
      rows += std::to_string(frame) + " " + std::to_string(person) + " " +
              std::to_string(0.04 * frame) + " 0 " + std::to_string(0.6 * person) + " 0 0 0\n";
    }
  }
  folder.write("walk/obsmat.txt", rows);
  folder.write("walk/H.txt", "0 0.02 -2\n-0.02 0 2\n0 0 1\n");
  EXPECT_EQ(program.run(arguments("walk", {"--frames", "120:170"})), 0);
  ASSERT_EQ(groups().size(), 6U);
  EXPECT_THAT(groups()[5], StartsWith(R"({"frame": 170, )"));
  EXPECT_THAT(actors()[5], StartsWith(R"({"frame": 6, "reportedFrame": 4, "inputFrame": 150, )"
                                      R"("persons": [1, 2], "groups": [{"id": 0, )"));
  std::filesystem::remove(inFolder("walk/H.txt"));
  Program unseeing(inFolder(""));
  EXPECT_EQ(unseeing.run(arguments("walk", {"--quiet"})), 0) << "without a view of the image";
  EXPECT_EQ(groups().size(), 11U);
}

TEST_F(Run, NeedsImagesOnlyWhenTheParametersDrawOnThem) {
  folder.write("scene.jsonl", walkingLine(1, R"("image": "no.png", )"));
  EXPECT_EQ(program.run(arguments("scene.jsonl")), 0);
  folder.write("p.txt", sampleParameters({{"saveOutput:", "1"}}));
  Program drawing(inFolder(""));
  EXPECT_EQ(drawing.run(arguments("scene.jsonl")), 2);
  EXPECT_EQ(drawing.errors(), "scene.jsonl:1: the image no.png is missing or not readable\n");
}

TEST_F(Run, WritesGroupsToStandardOutputWhenAsked) {
  folder.write("scene.jsonl", walkingLine(1) + walkingLine(2));
  const QStringList common{"run",           "scene.jsonl", "--parameters", "p.txt",
                           "--mobile-dump", "none",        "--output"};
  ASSERT_EQ(program.run(common + QStringList{"g.jsonl", "--diagnostics", "none"}), 0);
  Program piped(inFolder(""));
  ASSERT_EQ(piped.run(common + QStringList{"-"}), 0) << piped.errors();
  EXPECT_EQ(piped.output(), textOf(inFolder("g.jsonl")));
}

TEST_F(Run, AnswersAWrongCommandLineWithOneLineAndAHint) {
  EXPECT_EQ(program.run({"run"}), 2);
  EXPECT_THAT(program.errors(), StartsWith("INPUT: tracks of people are expected"));
  Program backwards(inFolder(""));
  EXPECT_EQ(backwards.run(arguments("scene.jsonl", {"--frames", "5:3"})), 2);
  EXPECT_THAT(backwards.errors(), StartsWith("--frames: A:B, A: or :B is expected"));
  const std::vector<std::pair<QStringList, std::string>> slips{
      {{"rnu", "scene.jsonl"}, "rnu is no command; did you mean run?\n"},
      {{"wonder"}, "wonder is no command\n"},
      {arguments("scene.jsonl", {"--diagnotsics", "none"}),
       "--diagnotsics is no option of run; did you mean --diagnostics?\n"},
      {{"run", "scene.jsonl", "--paramters=p.txt"},
       "--paramters is no option of run; did you mean --parameters?\n"}};
  for (const auto& [words, answer] : slips) {
    Program slipping(inFolder(""));
    EXPECT_EQ(slipping.run(words), 2);
    EXPECT_EQ(slipping.errors(), answer);
  }
  const auto refuses = [this](const char* size) {
    Program sizing(inFolder(""));
    EXPECT_EQ(sizing.run(arguments("none.jsonl", {"--image-size", size})), 2);
    return sizing.errors().starts_with("--image-size");
  };
  for (const char* const size :
       {"640x480", "640 x 480", "640X480", "640*480", "640 480", "640\u00D7480"}) {
    EXPECT_FALSE(refuses(size)) << size;
  }
  for (const char* const size : {"640", "x480", "640x", "640xx480", "0x480", "-640x480"}) {
    EXPECT_TRUE(refuses(size)) << size;
  }
  Program asking(inFolder(""));
  EXPECT_EQ(asking.run({"run", "--help"}), 0);
  EXPECT_THAT(asking.output(), HasSubstr("Examples:\n  grouptracker run "));
}

}  // namespace

}  // namespace grouptracker
