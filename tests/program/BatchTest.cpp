#include "tests/support/base/Texts.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <sys/stat.h>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

/// Two who walk together and one who walks the other way, `apart` metres off.
std::string walkers(double apart) {
  std::ostringstream text;
  text << "frame,id,x,y\n";
  for (int frame = 0; frame < 40; ++frame) {
    text << frame << ",1," << 0.5 * frame << ",0\n";
    text << frame << ",2," << 0.5 * frame << ",0.7\n";
    text << frame << ",3," << 20 - 0.5 * frame << "," << apart << "\n";
  }
  return text.str();
}

/// A folder with the manifest of three recordings, of which the second has bad input.
class Batch : public testing::Test {
 protected:
  Batch() {
    fs::create_directory(m_folder.path() / "in");
    m_folder.write("in/a.csv", walkers(5));
    m_folder.write("in/bad.csv", "frame,id,x,y\n1,1,0,0\n2,1,zero,0\n");
    m_folder.write("in/c.csv", walkers(8));
    m_folder.write("in/truth.txt", "1 2\n");
    m_folder.write("in/m.csv",
                   "name,input,truth,events\n"
                   "a,a.csv,truth.txt,e.jsonl\n"
                   "bad,bad.csv,,\n"
                   "c,c.csv,,\n");
  }
  int batch(const QStringList& more, const QString& results = "out") {
    Program program(m_folder.path());
    const int status = program.run(QStringList{"batch", "in/m.csv", "--output", results} + more);
    m_output = program.output();
    m_errors = program.errors();
    return status;
  }
  std::string read(const std::string& name) const { return textOf(m_folder.path() / name); }
  fs::file_time_type timeOf(const std::string& name) const {
    return fs::last_write_time(m_folder.path() / name);
  }
  /// All that was made, by its place; what tells of time and memory is left out.
  std::map<std::string, std::string> made(const std::string& results) const {
    std::map<std::string, std::string> files;
    const fs::path root = m_folder.path() / results / "recordings";
    for (const fs::directory_entry& item : fs::recursive_directory_iterator(root)) {
      if (item.is_regular_file() && item.path().filename() != "result.json") {
        files[item.path().lexically_relative(root)] = textOf(item.path());
      }
    }
    return files;
  }
  /// The rows of the summary up to the scores, and their messages.
  std::vector<std::string> rows(const std::string& results) const {
    std::vector<std::string> rows = linesOf(read(results + "/summary.csv"));
    for (std::string& row : rows) {
      std::vector<std::string> cells;
      std::istringstream in(row);
      for (std::string cell; std::getline(in, cell, ',');) {
        cells.push_back(cell);
      }
      row = cells[0] + " " + cells[1] + " " + cells[2] + " " + cells[6] + " " +
            row.substr(row.rfind(',') + 1);
    }
    return rows;
  }

  TempFolder m_folder;
  std::string m_output;
  std::string m_errors;
};

TEST_F(Batch, MakesEveryRecordingAndWhatFailsCostsItselfOnly) {
  ASSERT_EQ(batch({"--jobs", "2"}), 6) << m_errors;
  EXPECT_THAT(m_errors, HasSubstr("bad: bad.csv:3: "));
  EXPECT_THAT(m_errors, HasSubstr("3 recordings: 2 done, 1 failed (3 made now, "));
  const auto summary = rows("out");
  ASSERT_EQ(summary.size(), 5U);
  EXPECT_EQ(summary[1], "a done 40 1.000 ");
  EXPECT_THAT(summary[2], StartsWith("bad failed 0  \"bad.csv:3: "));
  EXPECT_EQ(summary[3], "c done 40  ");
  EXPECT_EQ(linesOf(read("out/recordings/a/groups.jsonl")).size(), 40U);
  EXPECT_THAT(read("out/recordings/a/e.jsonl"), HasSubstr("created"));
  EXPECT_THAT(read("out/recordings/a/scores.json"), StartsWith("{"));
  EXPECT_THAT(read("out/recordings/c/report.html"), HasSubstr("<html"));
  EXPECT_THAT(read("out/index.html"), HasSubstr("recordings/c/report.html"));
  EXPECT_TRUE(fs::is_empty(m_folder.path() / "out/.work"));

  ASSERT_EQ(batch({"--jobs", "1"}, "one"), 6);
  EXPECT_EQ(made("one"), made("out")) << "byte for byte";
}

TEST_F(Batch, GoesOnWhereItWasAndMakesAnewWhatChanged) {
  ASSERT_EQ(batch({"--no-report"}), 6);
  const auto a = timeOf("out/recordings/a/groups.jsonl");
  const auto c = timeOf("out/recordings/c/groups.jsonl");
  m_folder.write("in/bad.csv", walkers(5));
  m_folder.write("in/c.csv", walkers(9));
  ASSERT_EQ(batch({"--no-report", "--list"}), 0);
  EXPECT_EQ(m_output, "bad\nc\n");
  ASSERT_EQ(batch({"--no-report"}), 0) << m_errors;
  EXPECT_THAT(m_errors, HasSubstr("3 recordings: 3 done (2 made now, "));
  EXPECT_EQ(timeOf("out/recordings/a/groups.jsonl"), a);
  EXPECT_NE(timeOf("out/recordings/c/groups.jsonl"), c);
  ASSERT_EQ(batch({"--no-report"}), 0);
  EXPECT_EQ(m_errors, "3 recordings: 3 done; see out/index.html\n");
}

TEST_F(Batch, EndsWhatTakesTooLong) {
  fs::remove(m_folder.path() / "in/bad.csv");
  ASSERT_EQ(::mkfifo((m_folder.path() / "in/bad.csv").c_str(), 0600), 0);
  ASSERT_EQ(batch({"--no-report", "--patience", "1"}), 6);
  EXPECT_THAT(m_errors, HasSubstr("bad: took longer than 1 s"));
  EXPECT_THAT(rows("out")[2], StartsWith("bad failed 0  took longer than 1 s"));
}

TEST_F(Batch, LeavesNothingHalfWhenItIsKilled) {
  fs::remove(m_folder.path() / "in/c.csv");
  ASSERT_EQ(::mkfifo((m_folder.path() / "in/c.csv").c_str(), 0600), 0);
  for (const int signal : {SIGKILL, SIGINT}) {
    Program program(m_folder.path());
    fs::remove(m_folder.path() / "out/recordings/bad/result.json");
    program.start({"batch", "in/m.csv", "--output", "out", "--no-report", "--jobs", "1"});
    // The first two are made, and the third waits in vain.
    ASSERT_TRUE(program.waitUntil([this] {
      return fs::exists(m_folder.path() / "out/recordings/bad/result.json") &&
             !fs::is_empty(m_folder.path() / "out/.work");
    }));
    program.send(signal);
    EXPECT_EQ(program.finish(), signal == SIGINT ? 128 + SIGINT : -1) << program.errors();
  }
  fs::remove(m_folder.path() / "in/c.csv");
  m_folder.write("in/c.csv", walkers(8));
  ASSERT_EQ(batch({"--no-report"}), 6);
  EXPECT_EQ(rows("out")[3], "c done 40  ");
  EXPECT_TRUE(fs::is_empty(m_folder.path() / "out/.work"));
}

TEST_F(Batch, LetsOtherEnginesDoIt) {
  ASSERT_EQ(batch({"--jobs", "2"}), 6);
  ASSERT_EQ(batch({"--list"}, "other"), 0);
  EXPECT_EQ(m_output, "a\nbad\nc\n");
  EXPECT_FALSE(fs::exists(m_folder.path() / "other"));
  ASSERT_EQ(batch({"--only", "a"}, "other"), 0) << m_errors;
  EXPECT_FALSE(fs::exists(m_folder.path() / "other/summary.csv"));
  Program rest(m_folder.path());
  rest.start({"batch", "in/m.csv", "--output", "other", "--only", "-"});
  rest.process().write("bad\nc\n");
  EXPECT_EQ(rest.finish(), 6);
  EXPECT_EQ(made("other"), made("out"));
  ASSERT_EQ(batch({"--summary"}, "other"), 6);
  EXPECT_EQ(rows("other"), rows("out"));
  EXPECT_EQ(batch({"--only", "d"}, "other"), 2);
  EXPECT_EQ(m_errors, "in/m.csv: d is none of the recordings\n");
}

TEST_F(Batch, TellsAllProblemsBeforeAnythingRuns) {
  m_folder.write("in/m.csv",
                 "name,input,rate,set,colums\n"
                 "a,a.csv,0,coherenceThreshold=4;maxFrames=40,\n"
                 "a,missing.csv,25,,\n");
  ASSERT_EQ(batch({}), 2);
  EXPECT_THAT(linesOf(m_errors),
              ElementsAre("in/m.csv:2: --rate: a number above 0 is expected",
                          StartsWith("in/m.csv:2: --set: maxFrames is no parameter"),
                          "in/m.csv:3: missing.csv: cannot be read: No such file or directory",
                          "in/m.csv:3: the name is that of line 2, or differs in capitals only"));
  EXPECT_FALSE(fs::exists(m_folder.path() / "out"));
  m_folder.write("in/m.csv", "name,input,colums\na,a.csv,x=1\n");
  ASSERT_EQ(batch({}), 2);
  EXPECT_EQ(m_errors, "in/m.csv:1: colums is no option of run; did you mean columns?\n");
}

TEST_F(Batch, RefusesWhatWouldChangeNothingAndWhatItWouldDestroy) {
  EXPECT_EQ(batch({"--summary", "--only", "a"}), 2);
  EXPECT_EQ(m_errors, "--only: has no sense with --summary\n");
  EXPECT_EQ(batch({"--scan", "in"}), 2);
  EXPECT_EQ(batch({"--chunk", "3"}), 2);
  EXPECT_EQ(m_errors, "--chunk: has no sense without --engine slurm\n");
  const std::string manifest = "name,input\na,../in/a.csv\n";
  fs::create_directory(m_folder.path() / "out");
  m_folder.write("out/summary.csv", manifest);
  Program program(m_folder.path());
  EXPECT_EQ(program.run({"batch", "out/summary.csv", "--output", "out"}), 4);
  EXPECT_THAT(program.errors(), HasSubstr("would overwrite out/summary.csv"));
  EXPECT_EQ(read("out/summary.csv"), manifest);
}

TEST_F(Batch, PutsAFolderWhereAFileWasAndTheOtherWayRound) {
  for (const char* const option : {"events", "video", "events"}) {
    m_folder.write("in/m.csv", std::string("name,input,") + option + "\na,a.csv,v\n");
    ASSERT_EQ(batch({"--no-report"}), 0) << m_errors;
    EXPECT_EQ(fs::is_directory(m_folder.path() / "out/recordings/a/v"),
              std::string(option) == "video");
  }
}

TEST_F(Batch, FindsTheRecordingsOfAFolder) {
  fs::create_directory(m_folder.path() / "in/walk");
  m_folder.write("in/walk/obsmat.txt", "1 1 0 0 0 0 0 0\n2 1 1 0 0 0 0 0\n");
  m_folder.write("in/walk/H.txt", "1 0 0\n0 1 0\n0 0 1\n");
  m_folder.write("in/walk/groups.txt", "1 2\n");
  m_folder.write("in/c.groups.txt", "1 2\n");
  m_folder.write("in/A.txt", walkers(5));
  m_folder.write("in/all.csv", walkers(5));
  m_folder.write("in/all-events-of-may.csv", walkers(5));
  fs::create_symlink("..", m_folder.path() / "in/up");
  fs::remove(m_folder.path() / "in/m.csv");
  Program program(m_folder.path());
  ASSERT_EQ(program.run({"batch", "--scan", "in", "in/m.csv"}), 0) << program.errors();
  EXPECT_EQ(read("in/m.csv"),
            "name,input,truth,calibration\n"
            "A,A.txt,,\n"
            "a.csv,a.csv,,\n"
            "all-events-of-may,all-events-of-may.csv,,\n"
            "all.csv,all.csv,,\n"
            "c,c.csv,c.groups.txt,\n"
            "walk,walk,walk/groups.txt,\n")
      << "without the one that no reader takes";
  Program again(m_folder.path());
  EXPECT_EQ(again.run({"batch", "--scan", "in", "in/m.csv"}), 4) << "it is there";
  Program shown(m_folder.path());
  ASSERT_EQ(shown.run({"batch", "--scan", "in/walk/"}), 0);
  EXPECT_EQ(shown.output(), "name,input,truth,calibration\nwalk,in/walk,in/walk/groups.txt,\n");
}

/// Commands of Slurm by which one machine does all, task by task.
class BatchBySlurm : public Batch {
 protected:
  BatchBySlurm() {
    fs::create_directory(m_folder.path() / "bin");
    command("sinfo", "echo one \"$(hostname)\"");
    command("scontrol", "echo 'MaxArraySize = 1001'");
    command("squeue", "exit 0");
    // Each task twice, as after a node that was lost.
    command("sbatch",
            "for word; do case $word in --array=0-*) last=${word#*-};"
            " last=${last#*-}; last=${last#*-}; esac; done\n"
            "for task in $(seq 0 \"$last\") 0; do\n"
            "  SLURM_ARRAY_TASK_ID=$task sh \"$word\" > /dev/null 2>&1\ndone\n"
            "echo \"$@\" > \"$(dirname \"$0\")/called\"; echo 7");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(
        "PATH", QString::fromStdString(m_folder.path() / "bin") + ":" + environment.value("PATH"));
    m_program.process().setProcessEnvironment(environment);
  }
  void command(const std::string& name, const std::string& lines) const {
    fs::permissions(m_folder.write("bin/" + name, "#!/bin/sh\n" + lines + "\n"),
                    fs::perms::owner_all);
  }

  Program m_program{m_folder.path()};
};

TEST_F(BatchBySlurm, MakesTheSameBytesAsHere) {
  ASSERT_EQ(batch({"--jobs", "2"}), 6);
  EXPECT_EQ(m_program.run({"batch", "in/m.csv", "--output", "far", "--engine", "slurm", "--chunk",
                           "2", "--slurm-option", "partition=long"}),
            6)
      << m_program.errors();
  EXPECT_EQ(made("far"), made("out"));
  EXPECT_EQ(rows("far"), rows("out"));
  EXPECT_THAT(read("bin/called"), HasSubstr("--array=0-1 "));
  EXPECT_THAT(read("bin/called"), HasSubstr("--partition=long"));
  EXPECT_THAT(m_program.errors(), HasSubstr("3 recordings: 2 done, 1 failed"));
}

TEST_F(BatchBySlurm, WantsASharedFolderBeforeItSubmits) {
  command("sinfo", "echo 'far elsewhere all*'");
  command("srun", "echo " + m_folder.path().string() + "/far/.slurm; echo asked");
  EXPECT_EQ(m_program.run({"batch", "in/m.csv", "--output", "far", "--engine", "slurm"}), 4);
  EXPECT_THAT(m_program.errors(), MatchesRegex(".*/far/.slurm: lies on a disk of this machine, "
                                               "which node far does not see; .*\n"));
  EXPECT_FALSE(fs::exists(m_folder.path() / "bin/called"));
}

}  // namespace

}  // namespace grouptracker
