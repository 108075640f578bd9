#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace grouptracker {

namespace {

using testing::EndsWith;
using testing::HasSubstr;

constexpr int frames = 60;

/// Runs whose outputs somebody reads who goes before their end.
class LeavingReaders : public testing::Test {
 protected:
  LeavingReaders() {
    folder.write("p.txt", sampleParameters());
    folder.write("scene.jsonl", walkingScene(frames));
  }

  /// Makes a pipe that holds one page only and reads it: takes what comes first, and goes.
  std::jthread readALittle(const std::string& pipe) const {
    const std::string path = folder.path() / pipe;
    ::mkfifo(path.c_str(), 0600);
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    ::fcntl(file, F_SETPIPE_SZ, 4096);
    return std::jthread([file] {
      pollfd written{file, POLLIN, 0};
      ::poll(&written, 1, -1);
      std::array<char, 10> start{};
      [[maybe_unused]] const ssize_t ignored = ::read(file, start.data(), start.size());
      ::close(file);
    });
  }
  /// Runs the program with a pipe as its standard output, whose reader leaves.
  int runIntoPipe(Program& program, const QStringList& arguments) const {
    const std::jthread reader = readALittle("pipe");
    program.process().setStandardOutputFile(QString::fromStdString(folder.path() / "pipe"));
    return program.run(arguments);
  }
  int run(Program& program, const QStringList& more) const {
    return program.run(
        QStringList{"run", "scene.jsonl", "--parameters", "p.txt", "--output", "g.jsonl"} + more);
  }
  std::string text(const std::string& name) const { return textOf(folder.path() / name); }
  std::ptrdiff_t lines(const std::string& name) const {
    const std::string whole = text(name);
    return std::count(whole.begin(), whole.end(), '\n');
  }

  const TempFolder folder;
};

TEST_F(LeavingReaders, EndTheirOutputOnly) {
  const QStringList silent{"--diagnostics", "none", "--mobile-dump", "none"};
  const std::vector<std::pair<QStringList, std::string>> outputs{
      {QStringList{"--actors", "pipe"} + silent, "pipe"},
      {QStringList{"--csv", "pipe"} + silent, "pipe"},
      {QStringList{"--video", "pipe.mkv", "--top-view"} + silent, "pipe.mkv"},
      {{"--diagnostics", "pipe", "--mobile-dump", "none"}, "pipe"},
      {{"--diagnostics", "none", "--mobile-dump", "pipe"}, "pipe"}};
  for (const auto& [options, pipe] : outputs) {
    SCOPED_TRACE(options.join(' ').toStdString());
    const std::jthread reader = readALittle(pipe);
    Program program(folder.path());
    EXPECT_EQ(run(program, options), 5);
    EXPECT_THAT(program.errors(),
                HasSubstr(pipe + ": warning: its reader has left; the other outputs go on\n"));
    EXPECT_EQ(lines("g.jsonl"), frames);
  }
}

TEST_F(LeavingReaders, OfStandardOutputLeaveTheFilesToTheRun) {
  Program program(folder.path());
  EXPECT_EQ(runIntoPipe(program, {"run", "scene.jsonl", "--parameters", "p.txt", "--output",
                                  "g.jsonl", "--csv", "g.csv", "--mobile-dump", "none", "--quiet",
                                  "--status", "status.json"}),
            5);
  EXPECT_EQ(program.errors(), "") << "nobody wants words";
  EXPECT_EQ(lines("g.jsonl"), frames);
  EXPECT_THAT(text("g.csv"), EndsWith("\n"));
  EXPECT_THAT(text("status.json"), HasSubstr("\"complete\": false"));
}

TEST_F(LeavingReaders, WhoAreTheLastEndTheProgramWithoutAWord) {
  folder.write("scene.jsonl", walkingScene(3000));
  Program running(folder.path());
  EXPECT_EQ(runIntoPipe(running, {"run", "scene.jsonl", "--parameters", "p.txt", "--output", "-",
                                  "--mobile-dump", "none", "--status", "status.json"}),
            5);
  EXPECT_EQ(running.errors(), "");
  EXPECT_EQ(text("status.json"), "{\"complete\": false, \"frames\": 0}\n");
}

}  // namespace

}  // namespace grouptracker
