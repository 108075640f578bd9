#include "tests/support/base/Texts.h"
#include "tests/support/host/GroupsSchema.h"
#include "tests/support/program/Program.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <thread>

namespace grouptracker {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// `grouptracker run` on what arrives: two who walk together, and somebody else.
class Live : public testing::Test {
 protected:
  static QStringList arguments(const QStringList& more = {}, const QString& input = "-") {
    return QStringList{"run",
                       input,
                       "--look-ahead",
                       "0",
                       "--max-lateness",
                       "0.1",
                       "--output",
                       "groups.jsonl",
                       "--diagnostics",
                       "none",
                       "--mobile-dump",
                       "none",
                       "--rate",
                       "10"} +
           more;
  }
  static std::string message(int frame) {
    const double x = 0.1 * frame;
    return fmt::format(
        "{{\"time\": {}, \"frame\": {}, \"people\": [{{\"id\": \"a7f0\", \"x\": {}, \"y\": 0}}, "
        "{{\"id\": \"b\\\"1\", \"x\": {}, \"y\": 0.6}}, {{\"id\": 7, \"x\": 3, \"y\": 9}}]}}\n",
        1000.5 + 0.1 * frame, frame, x, x);
  }
  static std::string motLines(int frame, const std::string& more = "") {
    return fmt::format("{0},4,{1},20,30,80,0.9,{2},0.5,0\n{0},9,50,20,30,80,0.9,{2},1.1,0\n{3}",
                       frame, 10 * frame, 0.1 * frame, more);
  }
  void send(const std::string& text) {
    program.process().write(QByteArray::fromStdString(text));
    program.process().waitForBytesWritten();
  }
  std::vector<std::string> groups() const { return linesOf(textOf(path("groups.jsonl"))); }
  bool awaitGroups(std::size_t count) {
    return program.waitUntil([&] { return groups().size() >= count; });
  }
  std::string path(const std::string& name) const { return folder.path() / name; }

  const TempFolder folder;
  Program program{folder.path()};
};

TEST_F(Live, AnswersPeopleMessagesAsTheyComeWithTheNamesAndTimesOfTheSender) {
  program.start(arguments({"--events", "events.jsonl", "--csv", "members.csv"}));
  for (int frame = 17; frame < 50; ++frame) {
    send(message(frame));
    ASSERT_TRUE(awaitGroups(static_cast<std::size_t>(frame) - 16)) << frame << program.errors();
  }
  EXPECT_EQ(program.finish(), 0) << program.errors();
  EXPECT_EQ(groupsFault(textOf(path("groups.jsonl"))), "");
  EXPECT_EQ(groups().front(),
            R"({"frame": 17, "time": 1002.2, "groups": [], "alone": [7, "a7f0", "b\"1"]})");
  EXPECT_THAT(groups().back(), StartsWith(R"({"frame": 49, "time": 1005.4, "groups": [{"id": 1, )"
                                          R"("members": ["a7f0", "b\"1"], )"));
  EXPECT_THAT(groups().back(), EndsWith(R"(}], "alone": [7]})"));
  EXPECT_THAT(textOf(path("events.jsonl")),
              StartsWith(R"({"event": "created", "group": 1, "persons": ["a7f0", "b\"1"], )"));
  EXPECT_THAT(textOf(path("members.csv")), HasSubstr(",1,\"b\"\"1\","));
  Program replay(folder.path());
  EXPECT_EQ(replay.run({"events", "groups.jsonl"}), 0);
  EXPECT_EQ(replay.output(), textOf(path("events.jsonl"))) << "the names are read again";
}

TEST_F(Live, TracksLinesOfAPipeFrameByFrame) {
  ASSERT_EQ(::mkfifo(path("tracks").c_str(), 0600), 0);
  program.start(arguments({"--format", "mot"}, "tracks"));
  std::ofstream pipe(path("tracks"));
  for (int frame = 1; frame < 30; ++frame) {
    pipe << motLines(frame) << std::flush;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ASSERT_TRUE(frame < 20 || awaitGroups(static_cast<std::size_t>(frame - 2))) << frame;
  }
  pipe.close();
  EXPECT_EQ(program.finish(), 0) << program.errors();
  ASSERT_EQ(groups().size(), 29U) << "the last one, too";
  EXPECT_THAT(groups().back(), StartsWith(R"({"frame": 29, "time": 2.9, "groups": [{"id": 1, )"
                                          R"("members": [4, 9], )"));
}

TEST_F(Live, TakesBoxesOfAPipeAsAWholeWhereNoCameraIsKnown) {
  std::string boxes;
  for (int frame = 1; frame <= 40; ++frame) {
    for (int person = 1; person <= 12; ++person) {
      boxes += fmt::format("{},{},{},{},{},{},1\n", frame, person, 40 * person + frame, 20 * person,
                           10 + 3 * person, 30 + 9 * person);
    }
  }
  folder.write("boxes.txt", boxes);
  Program file(folder.path());
  ASSERT_EQ(file.run(arguments({"--format", "mot"}, "boxes.txt")), 0) << file.errors();
  const auto expected = groups();
  program.start(arguments({"--format", "mot"}));
  send(boxes);
  EXPECT_EQ(program.finish(), 0) << program.errors();
  EXPECT_EQ(groups(), expected);
  Program unknown(folder.path());
  unknown.start(arguments());
  unknown.process().write(QByteArray::fromStdString(boxes));
  EXPECT_EQ(unknown.finish(), 2);
  EXPECT_THAT(unknown.errors(), HasSubstr("standard input:1: there is a box only, for which"));
}

TEST_F(Live, PutsMessagesInOrderAndTellsWhatWasMissing) {
  std::string all;
  for (const int frame : {1, 2, 3, 4, 6, 5, 6, 7, 10, 11, 12}) {
    all += message(frame);
  }
  program.start(arguments());
  send(all);
  EXPECT_EQ(program.finish(), 0);
  EXPECT_EQ(groups().size(), 12U);
  EXPECT_THAT(groups()[8],
              StartsWith(R"({"frame": 9, "time": 1001.4, "groups": [], "alone": []})"));
  EXPECT_THAT(program.errors(), HasSubstr("-: warning: of 11 messages 0 came too late and 1 twice; "
                                          "2 are missing; the sender started anew 0 times"));
}

TEST_F(Live, SurvivesASenderWhoseClockIsSetBack) {
  std::string all;
  for (const double start : {5000.0, 1000.0}) {
    for (int i = 0; i < 60; ++i) {
      all += fmt::format(
          "{{\"time\": {0}, \"people\": [{{\"id\": 1, \"x\": {1}, \"y\": 0}}, "
          "{{\"id\": 2, \"x\": {1}, \"y\": 0.6}}]}}\n",
          start + 0.1 * i, 0.1 * i);
    }
  }
  QStringList ahead = arguments();
  ahead[3] = "1";
  program.start(ahead);
  send(all);
  EXPECT_EQ(program.finish(), 0);
  ASSERT_EQ(groups().size(), 120U);
  EXPECT_THAT(groups().back(), HasSubstr("\"time\": 1005.9, \"groups\": [{\"id\""));
  EXPECT_THAT(program.errors(), HasSubstr("the sender started anew 1 times"));
}

TEST_F(Live, ReadsWhatOtherSendersSayByAMap) {
  folder.write("map.json", R"({"time": "/stamp", "timeUnit": "ms", "people": "/objects",
                              "x": "/at/0", "y": "/at/1"})");
  program.start(arguments({"--message-map", "map.json"}));
  send("{\"stamp\": 1500, \"objects\": [{\"id\": \"p\", \"at\": [1, 2]}]}\n");
  EXPECT_EQ(program.finish(), 0) << program.errors();
  EXPECT_THAT(groups(),
              testing::ElementsAre(R"({"frame": 1, "time": 1.5, "groups": [], "alone": ["p"]})"));
}

TEST_F(Live, EndsWithADamagedMessageBehindWhatCameBefore) {
  program.start(arguments());
  send(message(1) + message(2) + "{\"people\": [{\"id\": 1}]}\n" + message(3));
  EXPECT_EQ(program.finish(), 2);
  EXPECT_THAT(program.errors(),
              EndsWith("standard input:3: people[0]: neither x and y nor a box is there\n"));
  EXPECT_EQ(groups().size(), 2U);
}

TEST_F(Live, ReadsAFileOfMessagesLikeAnyOtherInput) {
  std::string all;
  for (int frame = 1; frame < 30; ++frame) {
    all += message(frame);
  }
  folder.write("hall.jsonl", all);
  EXPECT_EQ(program.run({"check", "hall.jsonl"}), 0) << program.errors();
  Program run(folder.path());
  EXPECT_EQ(run.run(arguments({}, "hall.jsonl")), 0) << run.errors();
  EXPECT_EQ(groups().size(), 29U);
}

}  // namespace

}  // namespace grouptracker
