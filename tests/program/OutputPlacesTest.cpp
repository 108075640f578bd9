#include "host/video/VideoLibrary.h"
#include "tests/support/base/Images.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace grouptracker {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Everything that the program writes, at places that are taken, full, or not what they seem.
class OutputPlaces : public testing::Test {
 protected:
  OutputPlaces() {
    folder.write("p.txt", sampleParameters());
    folder.write("scene.jsonl", walkingScene(12));
    folder.write("truth.txt", "1 2\n");
    folder.write("g.jsonl",
                 R"({"frame": 2, "reportedFrame": 1, "inputFrame": 1, "persons": [], "groups": []})"
                 "\n");
  }

  std::string in(const std::string& name) const { return folder.path() / name; }
  std::string text(const std::string& name) const { return textOf(folder.path() / name); }
  int run(Program& program, const QStringList& more, const QString& dump = "none") const {
    return program.run(runArguments(more, dump));
  }
  static QStringList runArguments(const QStringList& more, const QString& dump = "none") {
    return QStringList{"run",
                       "scene.jsonl",
                       "--parameters",
                       "p.txt",
                       "--output",
                       "groups.jsonl",
                       "--quiet",
                       "--diagnostics",
                       "none",
                       "--mobile-dump",
                       dump} +
           more;
  }
  /// Whether the program notices SIGHUP and SIGINT by now, as the system says it in bits.
  static bool catchesSignals(Program& program) {
    constexpr std::size_t digits = 16;
    const std::string status =
        textOf("/proc/" + std::to_string(program.process().processId()) + "/status");
    const auto at = status.find("SigCgt:\t");
    return at != std::string::npos && status[at + 8 + digits - 1] == '3';
  }
  /// The program under a limit of the size of files, of so many blocks of 512 bytes.
  int runLimited(Program& program, int blocks, const QStringList& arguments) const {
    program.process().start("sh",
                            QStringList{"-c", "ulimit -f $0; exec \"$@\"", QString::number(blocks),
                                        QString::fromStdString(Program::path())} +
                                arguments);
    program.process().waitForStarted();
    return program.finish();
  }

  const TempFolder folder;
};

TEST_F(OutputPlaces, AreNeverWhatTheCommandReads) {
  folder.write("c.toml", "quiet = true\n");
  const auto inputs = [this] {
    return text("truth.txt") + text("p.txt") + text("scene.jsonl") + text("c.toml");
  };
  const std::vector<QStringList> commands{
      {"run", "scene.jsonl", "--config", "c.toml", "--output", "c.toml"},
      {"report", "scene.jsonl", "g.jsonl", "--truth", "truth.txt", "--output", "truth.txt"},
      {"report", "scene.jsonl", "g.jsonl", "--parameters", "p.txt", "--output", "./p.txt"},
      {"evaluate", "g.jsonl", "--truth", "truth.txt", "--input", "scene.jsonl", "--baselines",
       "--output", "scene.jsonl"},
      {"evaluate", "g.jsonl", "--truth", "truth.txt", "--errors", "truth.txt"},
      {"tune", "scene.jsonl:truth.txt", "--base", "p.txt", "--output", "truth.txt"},
      {"tune", "scene.jsonl:truth.txt", "--base", "p.txt", "--output", "o.txt", "--log", "p.txt"},
      {"convert", "scene.jsonl", "--calibration", "p.txt", "--output", "p.txt"},
      {"events", "g.jsonl", "--input", "scene.jsonl", "--csv", "scene.jsonl"},
      {"calibrate", "scene.jsonl", "--output", "scene.jsonl"}};
  for (const QStringList& command : commands) {
    const std::string before = inputs();
    Program program(folder.path());
    EXPECT_EQ(program.run(command), 4) << command.join(' ').toStdString();
    EXPECT_THAT(program.errors(), HasSubstr(": would overwrite "));
    EXPECT_TRUE(inputs() == before);
  }
}

TEST_F(OutputPlaces, AreNotTheFileOnStandardInputOrOutput) {
  Program program(folder.path());
  program.process().setStandardInputFile(QString::fromStdString(in("scene.jsonl")));
  EXPECT_EQ(program.run({"run", "-", "--parameters", "p.txt", "--output", "scene.jsonl"}), 4);
  EXPECT_EQ(program.errors(), "scene.jsonl: would overwrite standard input\n");
  Program both(folder.path());
  both.process().setStandardOutputFile(QString::fromStdString(in("g2.jsonl")));
  EXPECT_EQ(both.run({"run", "scene.jsonl", "--parameters", "p.txt", "--output", "g2.jsonl"}), 4);
}

TEST_F(OutputPlaces, OfADatabaseAreRegularFilesAndLinksAreFollowed) {
  ASSERT_EQ(::mkfifo(in("pipe").c_str(), 0600), 0);
  Program program(folder.path());
  EXPECT_EQ(run(program, {"--sqlite", "pipe"}), 4);
  EXPECT_EQ(program.errors(), "pipe: is no regular file, so it cannot be replaced\n");
  EXPECT_TRUE(std::filesystem::is_fifo(in("pipe")));

  folder.write("run.sqlite", "of an earlier run");
  std::filesystem::create_symlink("run.sqlite", in("link"));
  Program linked(folder.path());
  EXPECT_EQ(run(linked, {"--sqlite", "link"}), 0) << linked.errors();
  EXPECT_TRUE(std::filesystem::is_symlink(in("link")));
  EXPECT_THAT(text("run.sqlite"), StartsWith("SQLite format 3"));
}

TEST_F(OutputPlaces, AreWrittenByOneRunAtATime) {
  std::filesystem::create_directory(in("pictures"));
  for (const QString name :
       {"e.jsonl", "t.csv", "r.sqlite", "g.dot", "f.mp4", "pictures", "dump.txt"}) {
    const std::string path = in(name.toStdString());
    const int other = ::open(path.c_str(), name == "pictures" ? O_RDONLY : O_RDWR | O_CREAT, 0600);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    Program second(folder.path());
    const QString option = name.endsWith("jsonl")    ? "--events"
                           : name.endsWith("csv")    ? "--csv"
                           : name.endsWith("sqlite") ? "--sqlite"
                           : name.endsWith("dot")    ? "--graph"
                                                     : "--video";
    EXPECT_EQ(name == "dump.txt" ? run(second, {}, name) : run(second, {option, name}), 4);
    EXPECT_EQ(second.errors(), name.toStdString() + ": is being written by another run\n");
    ::close(other);
  }
}

TEST_F(OutputPlaces, ThatAreFullAreToldAndHoldWhatIsWhole) {
  folder.write("scene.jsonl", walkingScene(60));
  Program dump(folder.path());
  EXPECT_EQ(runLimited(dump, 8, runArguments({}, "dump.txt")), 4);
  EXPECT_EQ(dump.errors(), "dump.txt: cannot be written: File too large\n");
  EXPECT_THAT(text("dump.txt"), testing::EndsWith("\n--------------------\n"));

  QStringList chatty = runArguments({});
  chatty[8] = "lines.txt";
  Program lines(folder.path());
  EXPECT_EQ(runLimited(lines, 5, chatty), 4);
  EXPECT_EQ(lines.errors(), "lines.txt: cannot be written: File too large\n");
  EXPECT_THAT(text("lines.txt"), testing::EndsWith("\n"));

  QStringList silent = runArguments({});
  silent[5] = "/dev/null";
  Program film(folder.path());
  EXPECT_EQ(runLimited(film, 40, silent + QStringList{"--video", "film.mp4"}), 4);
  EXPECT_EQ(film.errors(), "film.mp4: cannot be written: File too large\n");
  const auto shown = VideoLibrary::loaded().open(in("film.mp4"));
  ASSERT_TRUE(shown);
  EXPECT_FALSE(shown->next().empty()) << "what was written before can be seen";

  std::filesystem::create_symlink("/dev/full", in("full.mp4"));
  Program header(folder.path());
  EXPECT_EQ(header.run(silent + QStringList{"--video", "full.mp4"}), 4);
  EXPECT_EQ(header.errors(), "full.mp4: cannot be written: No space left on device\n");

  Program pictures(folder.path());
  EXPECT_EQ(runLimited(pictures, 1, silent + QStringList{"--video", "pictures"}), 4);
  EXPECT_EQ(pictures.errors(), "pictures/000001.png: cannot be written: File too large\n");
  EXPECT_TRUE(std::filesystem::is_empty(in("pictures")));
}

TEST_F(OutputPlaces, OfTrialsThatAreFullAreTold) {
  Program program(folder.path());
  EXPECT_EQ(runLimited(program, 1,
                       {"tune", "scene.jsonl:truth.txt", "--base", "p.txt", "--output", "o.txt"}),
            4);
  EXPECT_THAT(program.errors(), HasSubstr("/0: cannot be written: File too large\n"));
}

TEST_F(OutputPlaces, OfWhatIsPrintedMayBeFullToo) {
  for (const QStringList& command : std::vector<QStringList>{
           {"run", "--help"}, {"--version"}, {"run", "--print-parameters"}, {"check", "p.txt"}}) {
    Program program(folder.path());
    program.process().setStandardOutputFile("/dev/full");
    EXPECT_EQ(program.run(command), 4) << command.join(' ').toStdString();
    EXPECT_EQ(program.errors(), "standard output: cannot be written: No space left on device\n");
  }
}

TEST_F(OutputPlaces, OfSimulatedImagesThatAreFullAreTold) {
  Program program(folder.path());
  EXPECT_EQ(runLimited(program, 8, {"simulate", "--images", "--frames", "3", "--output", "made"}),
            4);
  EXPECT_EQ(program.errors(), "made/images/000001.png: cannot be written: File too large\n");
  EXPECT_TRUE(std::filesystem::is_empty(in("made/images")));
}

TEST_F(OutputPlaces, OfAnnotatedImagesAreToldWhenTheyCannotBeWritten) {
  writeImage(in("1.png"), cv::Mat(40, 60, CV_8UC3, cv::Scalar::all(9)));
  std::string scene;
  for (int frame = 1; frame <= 6; ++frame) {
    scene += walkingLine(frame, R"("image": "1.png", )");
  }
  folder.write("scene.jsonl", scene);
  folder.write("p.txt",
               sampleParameters(
                   {{"saveOutput:", "1"}, {"openCVOutput:", "1"}, {"outputFolder:", "missing/"}}));
  Program program(folder.path());
  EXPECT_EQ(run(program, {}), 4);
  EXPECT_THAT(program.errors(), StartsWith("missing/"));
  EXPECT_THAT(program.errors(), HasSubstr(": cannot be written: "));
  EXPECT_THAT(text("groups.jsonl"), testing::EndsWith("}\n")) << "what was decided is there";
}

TEST_F(OutputPlaces, ThatWaitForAnybodyLetTheProgramStop) {
  ASSERT_EQ(::mkfifo(in("pipe").c_str(), 0600), 0);
  for (const QString option : {"--events", "--context", "--calibration"}) {
    Program waiting(folder.path());
    waiting.start(runArguments({option, "pipe"}));
    ASSERT_TRUE(waiting.waitUntil([&] { return catchesSignals(waiting); }));
    ::usleep(200'000);  // to the pipe
    EXPECT_EQ(waiting.process().state(), QProcess::Running) << option.toStdString();
    waiting.send(SIGINT);
    EXPECT_TRUE(waiting.process().waitForFinished(5000)) << option.toStdString();
    EXPECT_EQ(waiting.finish(), 128 + SIGINT);
  }
}

TEST_F(OutputPlaces, OfTheProcessItselfAreLockedToo) {
  const int other = ::open(in("metasimages.txt").c_str(), O_RDWR | O_CREAT, 0600);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  folder.write("groups.jsonl", "before\n");
  Program second(folder.path());
  const QStringList usual{"run",      "scene.jsonl",  "--parameters",  "p.txt",
                          "--output", "groups.jsonl", "--diagnostics", "none"};
  EXPECT_EQ(second.run(usual), 4);
  EXPECT_EQ(second.errors(), "metasimages.txt: is being written by another run\n");
  EXPECT_EQ(text("groups.jsonl"), "before\n");
  ::close(other);
  Program third(folder.path());
  EXPECT_EQ(third.run(usual), 0) << third.errors();
  EXPECT_THAT(text("metasimages.txt"), StartsWith("------------ Mobiles with Groups at frame 1\n"));
}

TEST_F(OutputPlaces, OfTheProcessHaveNamesThatItCanWrite) {
  for (const std::string option : {"--diagnostics none --mobile-dump", "--graph", "--status"}) {
    Program program(folder.path());
    program.process().setProgram("/bin/sh");
    program.process().setArguments(
        {"-c", QString::fromStdString("exec " + Program::path() +
                                      " run scene.jsonl --parameters p.txt --output groups.jsonl " +
                                      option + " \"$(printf 'd\\377.txt')\"")});
    program.process().start();
    EXPECT_EQ(program.finish(), 4);
    EXPECT_THAT(program.errors(), HasSubstr("in UTF-8 only\n"));
  }
}

TEST_F(OutputPlaces, OfWhichTheReaderSleepsDoNotKeepTheProgramFromStopping) {
  std::string scene;
  for (int frame = 1; frame <= 3000; ++frame) {
    scene += walkingLine(frame);
  }
  folder.write("scene.jsonl", scene);
  std::vector<std::unique_ptr<Program>> programs;
  std::vector<int> readers;
  for (const std::string options : {"--diagnostics - --mobile-dump none > pipe0",
                                    "--diagnostics lines.txt --mobile-dump - > pipe1",
                                    "--diagnostics none --mobile-dump pipe2"}) {
    const std::string number = std::to_string(programs.size());
    ASSERT_EQ(::mkfifo(in("pipe" + number).c_str(), 0600), 0);
    readers.push_back(::open(in("pipe" + number).c_str(), O_RDWR));  // and never reads
    Program& program = *programs.emplace_back(std::make_unique<Program>(folder.path()));
    program.process().setProgram("/bin/sh");
    program.process().setArguments(
        {"-c", QString::fromStdString("exec " + Program::path() +
                                      " run scene.jsonl --parameters p.txt --output groups" +
                                      number + ".jsonl " + options)});
    program.process().start();
  }
  for (std::size_t i = 0; i < programs.size(); ++i) {
    const auto isFull = [reader = readers[i]] {
      pollfd pipe{reader, POLLOUT, 0};
      return ::poll(&pipe, 1, 0) == 0;
    };
    ASSERT_TRUE(programs[i]->waitUntil(isFull));
    programs[i]->send(SIGTERM);
  }
  for (std::size_t i = 0; i < programs.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_TRUE(programs[i]->process().waitForFinished(5000));
    EXPECT_EQ(programs[i]->finish(), 128 + SIGTERM) << programs[i]->errors();
    EXPECT_THAT(text("groups" + std::to_string(i) + ".jsonl"), testing::EndsWith("}\n"));
    EXPECT_THAT(programs[i]->errors(), HasSubstr("stopped by SIGTERM"));
    ::close(readers[i]);
  }
  EXPECT_THAT(text("lines.txt"), Not(HasSubstr("Mobiles with Groups")));
}

TEST_F(OutputPlaces, AreNotTheImagesOfTheInput) {
  writeImage(in("000001.png"), cv::Mat(40, 60, CV_8UC3, cv::Scalar::all(9)));
  const std::string image = text("000001.png");
  std::string scene;
  for (int frame = 1; frame <= 6; ++frame) {
    scene += walkingLine(frame, R"("image": "000001.png", )");
  }
  folder.write("scene.jsonl", scene);
  Program program(folder.path());
  EXPECT_EQ(run(program, {"--video", "."}), 4);
  EXPECT_EQ(program.errors(), ".: would overwrite the images of the input\n");
  for (const QStringList& command :
       std::vector<QStringList>{runArguments({"--csv", "000001.png"}),
                                runArguments({}, "000001.png"),
                                {"report", "scene.jsonl", "g.jsonl", "--output", "000001.png"},
                                {"events", "g.jsonl", "--sqlite", "000001.png"}}) {
    Program other(folder.path());
    EXPECT_EQ(other.run(command), 4);
    EXPECT_EQ(other.errors(), "000001.png: is an image, which no output replaces\n");
  }
  EXPECT_TRUE(text("000001.png") == image);
}

}  // namespace

}  // namespace grouptracker
