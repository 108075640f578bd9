#include "host/batch/BatchFolder.h"
#include "host/batch/WorkFolder.h"
#include "tests/support/base/Texts.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

/// A recording that was made: in.csv, with a truth, gave groups.jsonl.
class MadeRecording : public testing::Test {
 protected:
  MadeRecording() {
    m_folder.write("in.csv", "tracks");
    m_folder.write("truth.txt", "1 2");
    m_recording.name = "north";
    m_recording.input = "in.csv";
    m_recording.truth = "truth.txt";
    m_recording.settings = {{{"rate", false, false, false, ""}, "25"}};
    make("groups");
  }
  BatchFolder results(const std::string& program = "p1") const {
    return {m_folder.path() / "out", m_folder.path(), program};
  }
  void make(const std::string& groups) const {
    const BatchFolder folder = results();
    folder.prepare();
    RecordingResult result = folder.begin(m_recording, {"--report"});
    const std::string work = folder.newWork("north");
    const WorkFolder atWork(work);
    m_folder.write(fs::relative(work, m_folder.path()) / "groups.jsonl", groups);
    result.isDone = true;
    result.frames = 7;
    result.scores = {0.1, 0.2, 0.3};
    folder.finish("north", work, result);
  }
  bool isDone() const { return results().resultOf(m_recording, {"--report"}).has_value(); }
  /// As a copy does.
  void touch(const std::string& name) const {
    fs::last_write_time(m_folder.path() / name, fs::file_time_type::clock::now());
  }

  TempFolder m_folder;
  Recording m_recording;
};

TEST_F(MadeRecording, IsKnownAsItWasMade) {
  const auto result = results().resultOf(m_recording, {"--report"});
  ASSERT_TRUE(result);
  EXPECT_TRUE(result->isDone);
  EXPECT_EQ(result->frames, 7U);
  EXPECT_EQ(result->scores->pairs, 0.3);
  EXPECT_TRUE(fs::is_empty(m_folder.path() / "out/.work"));
  touch("in.csv");
  touch("out/recordings/north/groups.jsonl");
  EXPECT_TRUE(isDone()) << "the content is the same";
}

TEST_F(MadeRecording, IsOpenWhenWhatMadeItIsAnother) {
  EXPECT_FALSE(results("p2").resultOf(m_recording, {"--report"})) << "program";
  EXPECT_FALSE(results().resultOf(m_recording, {})) << "wishes";
  m_recording.settings.front().value = "10";
  EXPECT_FALSE(isDone()) << "options";
  m_recording.settings.front().value = "25";
  m_folder.write("truth.txt", "1 3");
  EXPECT_FALSE(isDone()) << "an input of the same size";
  m_folder.write("truth.txt", "1 2");
  EXPECT_TRUE(isDone());
  m_folder.write("out/recordings/north/groups.jsonl", "gro");
  EXPECT_FALSE(isDone()) << "a cut output";
  make("groups");
  fs::remove(m_folder.path() / "out/recordings/north/groups.jsonl");
  EXPECT_FALSE(isDone()) << "a missing output";
  make("groups");
  m_folder.write("out/recordings/north/result.json", "{\"done\": tru");
  EXPECT_FALSE(isDone()) << "a result that is none";
}

TEST_F(MadeRecording, IsOpenWhenWhatIsReadBesideChanges) {
  fs::create_directory(m_folder.path() / "walk");
  m_folder.write("walk/obsmat.txt", "1 1 0 0 0 0 0 0");
  for (const char* const input : {"walk/obsmat.txt", "walk"}) {
    fs::remove(m_folder.path() / "walk/H.txt");
    m_recording.input = input;
    make("groups");
    EXPECT_TRUE(isDone());
    m_folder.write("walk/H.txt", "1 0 0\n0 1 0\n0 0 1");
    EXPECT_FALSE(isDone()) << "it came";
    make("groups");
    EXPECT_TRUE(isDone());
    m_folder.write("walk/H.txt", "2 0 0\n0 1 0\n0 0 1");
    EXPECT_FALSE(isDone()) << "it changed";
  }
}

TEST_F(MadeRecording, IsReplacedByTheNextOneButForWhatSomebodyPutBeside) {
  m_folder.write("out/recordings/north/notes.txt", "mine");
  const BatchFolder folder = results();
  const auto fail = [&] {
    RecordingResult result = folder.begin(m_recording, {"--report"});
    result.message = "failed";
    folder.finish("north", folder.newWork("north"), result);
  };
  fail();
  EXPECT_TRUE(results().resultOf(m_recording, {"--report"})->isDone) << "by somebody else, as well";
  m_folder.write("in.csv", "other tracks");
  fail();
  EXPECT_FALSE(fs::exists(m_folder.path() / "out/recordings/north/groups.jsonl"));
  EXPECT_EQ(textOf(m_folder.path() / "out/recordings/north/notes.txt"), "mine");
  ASSERT_TRUE(isDone()) << "something is known of it";
  EXPECT_EQ(results().resultOf(m_recording, {"--report"})->message, "failed");
}

TEST_F(MadeRecording, LeavesNothingOfTheDeadAndEverythingOfTheLiving) {
  const std::string left = results().newWork("south");
  const pid_t child = ::fork();
  if (child == 0) {
    const WorkFolder atWork(left);
    ::_exit(0);
  }
  ::waitpid(child, nullptr, 0);
  ASSERT_TRUE(fs::exists(left));
  const std::string own = results().newWork("west");
  const WorkFolder atWork(own);
  const fs::path below = m_folder.path() / "out/.work";
  fs::create_directories(below / "east@elsewhere.1");
  fs::create_directories(below / "east@elsewhere.2");
  m_folder.write("out/.work/east@elsewhere.2.lock", "");
  fs::last_write_time(below / "east@elsewhere.2",
                      fs::file_time_type::clock::now() - std::chrono::hours(49));
  results().prepare();
  EXPECT_FALSE(fs::exists(left));
  EXPECT_TRUE(fs::exists(own)) << "of a process that is at work";
  EXPECT_TRUE(fs::exists(below / "east@elsewhere.1")) << "nobody knows";
  EXPECT_FALSE(fs::exists(below / "east@elsewhere.2")) << "too old";
  EXPECT_FALSE(fs::exists(below / "east@elsewhere.2.lock"));
}

TEST(FileMark, TellsAFolderByTheFilesBelow) {
  TempFolder folder;
  fs::create_directories(folder.path() / "in/det");
  folder.write("in/det/det.txt", "boxes");
  FileMark mark = FileMark::of(folder.path() / "in");
  mark.path = "in";
  EXPECT_TRUE(mark.holdsIn(folder.path()));
  folder.write("in/det/det.txt", "other");
  EXPECT_FALSE(mark.holdsIn(folder.path()));
}

}  // namespace

}  // namespace grouptracker
