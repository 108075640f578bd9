#include "host/output/RunFile.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace grouptracker {

namespace {

using testing::HasSubstr;

/// All results of a query as one text, rows separated by blanks.
std::string query(const std::string& path, const char* sql) {
  sqlite3* database = nullptr;
  EXPECT_EQ(sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  sqlite3_busy_timeout(database, 5000);  // ms; while the database is made nobody can read it
  std::string text;
  const auto append = [](void* result, int count, char** values, char**) {
    auto& line = *static_cast<std::string*>(result);
    line += line.empty() ? "" : " ";
    for (int i = 0; i < count; ++i) {
      line += i == 0 ? "" : "|";
      line += values[i] != nullptr ? values[i] : "null";
    }
    return 0;
  };
  EXPECT_EQ(sqlite3_exec(database, sql, append, &text, nullptr), SQLITE_OK) << sql;
  sqlite3_close(database);
  return text;
}

/// `grouptracker run` on a scene in which persons 1 and 2 walk together from frame 2 on.
class Export : public testing::Test {
 protected:
  Export() {
    folder.write("p.txt", sampleParameters());
    folder.write("scene.jsonl", walkingScene(12));
  }
  static int run(Program& started, const QStringList& more) {
    return started.run(QStringList{"run", "scene.jsonl", "--parameters", "p.txt", "--output",
                                   "groups.jsonl", "--actors", "actors.jsonl", "--diagnostics",
                                   "none", "--mobile-dump", "none", "--quiet"} +
                       more);
  }

  std::string text(const std::string& name) const { return textOf(folder.path() / name); }
  std::string rows(const std::string& name, const std::string& sql) const {
    return query((folder.path() / name).string(), sql.c_str());
  }
  std::vector<std::string> lines(const std::string& name) const { return linesOf(text(name)); }

  const TempFolder folder;
  Program program{folder.path()};
};

TEST_F(Export, EventsOfARunAreThoseOfItsGroupsFile) {
  EXPECT_EQ(run(program, {"--events", "events.jsonl", "--graph", "tree.dot"}), 0);
  const std::string events = text("events.jsonl");
  EXPECT_THAT(
      lines("events.jsonl")[0],
      HasSubstr(R"({"event": "created", "group": 1, "persons": [1, 2], "reportedFrame": )"));
  Program replay(folder.path());
  EXPECT_EQ(replay.run({"events", "groups.jsonl", "--graph", "again.dot"}), 0);
  EXPECT_EQ(replay.output(), events);
  EXPECT_EQ(text("tree.dot"), text("again.dot"));
  EXPECT_THAT(text("tree.dot"), HasSubstr("[label=\"1: 1, 2\", pos=\""));
}

TEST_F(Export, OfAReplayAreThoseOfTheRun) {
  Program simulation(folder.path());
  ASSERT_EQ(simulation.run({"simulate", "--output", "scene", "--frames", "150", "--seed", "5"}), 0);
  std::filesystem::copy(folder.path() / "scene/scene.jsonl", folder.path() / "scene.jsonl",
                        std::filesystem::copy_options::overwrite_existing);
  const auto outputs = [](const QString& name) {
    return QStringList{"--graph", name + ".dot",      "--mot",     name + ".txt",
                       "--csv",   name + ".csv",      "--sqlite",  name + ".sqlite",
                       "--video", name + "-pictures", "--persons", name + "-persons.csv"};
  };
  ASSERT_EQ(run(program, QStringList{"--events", "run.jsonl"} + outputs("run")), 0);
  Program replay(folder.path());
  ASSERT_EQ(replay.run(QStringList{"events", "groups.jsonl", "--input", "scene.jsonl", "--output",
                                   "replay.jsonl"} +
                       outputs("replay")),
            0)
      << replay.errors();
  EXPECT_GT(lines("run.jsonl").size(), 3U);
  for (const std::string end :
       {".jsonl", ".dot", ".txt", ".csv", "-persons.csv", "-pictures/000140.png"}) {
    EXPECT_FALSE(text("run" + end).empty()) << end;
    EXPECT_TRUE(text("run" + end) == text("replay" + end)) << end;
  }
  // The file itself also tells how often something was committed, which is a matter of time.
  for (const std::string table : {"frames", "groups", "members", "events", "event_persons"}) {
    const std::string all = "SELECT * FROM " + table;
    EXPECT_FALSE(rows("run.sqlite", all).empty()) << table;
    EXPECT_EQ(rows("run.sqlite", all), rows("replay.sqlite", all)) << table;
  }
}

TEST_F(Export, OfAReplayNeedTheInputOfTheRun) {
  ASSERT_EQ(run(program, {}), 0);
  Program blind(folder.path());
  EXPECT_EQ(blind.run({"events", "groups.jsonl", "--video", "pictures"}), 2);
  EXPECT_EQ(blind.errors(),
            "groups.jsonl: does not tell where people were: --video needs --input\n");
  folder.write("scene.jsonl", walkingScene(5));
  Program other(folder.path());
  EXPECT_EQ(other.run({"events", "groups.jsonl", "--input", "scene.jsonl"}), 2);
  EXPECT_EQ(other.errors(), "groups.jsonl:6: frame 6 is not in scene.jsonl\n");
}

TEST_F(Export, FilesOfARunAreReadAndWrittenWithoutLoss) {
  ASSERT_EQ(run(program, {}), 0);
  for (const char* const name : {"groups.jsonl", "actors.jsonl"}) {
    std::ifstream in(folder.path() / name);
    RunFileReader reader(in, name);
    RunFileWriter writer(folder.path() / "again.jsonl");
    for (RunStep step; reader.next(step);) {
      writer.write(step);
    }
    EXPECT_EQ(text("again.jsonl"), text(name));
  }
}

TEST_F(Export, OfTheProcessAreMadeOutOfItsActors) {
  ASSERT_EQ(run(program, {}), 0);
  Program replay(folder.path());
  EXPECT_EQ(replay.run({"events", "actors.jsonl", "--input", "scene.jsonl", "--csv", "m.csv",
                        "--mot", "m.txt", "--persons", "p.csv"}),
            0);
  EXPECT_THAT(replay.output(), HasSubstr(R"("group": 0, "persons": [1, 2], "reportedFrame": )"));
  EXPECT_EQ(lines("m.csv").back(), "10,0,2,1,4,");
  EXPECT_THAT(lines("m.txt").back(), testing::StartsWith("10,1,")) << "ids from 1";
  EXPECT_THAT(lines("p.csv").back(), testing::MatchesRegex("10,,3,.*,"));
}

TEST_F(Export, TablesHoldTheVisibleMembers) {
  EXPECT_EQ(run(program, {"--csv", "m.csv", "--mot", "m.txt", "--sqlite", "run.sqlite", "--persons",
                          "p.csv", "--rate", "2.5"}),
            0);
  const auto persons = lines("p.csv");
  EXPECT_EQ(persons[0], "frame,time,person,x,y,left,top,width,height,group");
  ASSERT_EQ(persons.size(), std::size_t{1 + 12 * 3});
  EXPECT_EQ(persons[35], "12,4.8,2,1,4.8,60,24,20,50,1");
  EXPECT_THAT(persons[36], testing::MatchesRegex("12,4\\.8,3,.*,")) << "somebody alone";
  const auto csv = lines("m.csv");
  EXPECT_EQ(csv[0], "frame,group,person,x,y,time");
  EXPECT_EQ(csv.back(), "12,1,2,1,4.8,4.8");
  EXPECT_THAT(lines("m.txt").back(),
              testing::MatchesRegex("12,1,30,24,50,50,0\\.[0-9]+,0\\.75,4\\.8,0"));
  const std::string database = folder.path() / "run.sqlite";
  EXPECT_EQ(query(database, "SELECT count(*), max(input_frame), max(time) FROM frames"),
            "12|12|4.8");
  EXPECT_EQ(query(database,
                  "SELECT frame, group_id, companion FROM companions WHERE person = 2 "
                  "AND frame > 10"),
            "11|1|1 12|1|1");
  EXPECT_EQ(query(database,
                  "SELECT kind, person FROM events JOIN event_persons "
                  "ON event_id = events.id"),
            "created|1 created|2");
  EXPECT_THAT(query(database, "EXPLAIN QUERY PLAN SELECT * FROM companions WHERE person = 2"),
              testing::Not(HasSubstr("SCAN")));
}

TEST_F(Export, DatabaseTakesNamesAsNamesOnly) {
  std::string table = "frame,id,x,y\n";
  for (int frame = 1; frame <= 30; ++frame) {
    const std::string x = "," + std::to_string(0.4 * frame);
    table += std::to_string(frame) + ",o') OR 1 --" + x + ",0\n";
    table += std::to_string(frame) + ",2" + x + ",0.8\n";
  }
  folder.write("names.csv", table);
  EXPECT_EQ(program.run({"run", "names.csv", "--sqlite", "run.sqlite", "--quiet", "--diagnostics",
                         "none", "--mobile-dump", "none"}),
            0)
      << program.errors();
  EXPECT_EQ(rows("run.sqlite", "SELECT DISTINCT person FROM event_persons ORDER BY person"),
            "2 o') OR 1 --");
}

// A reader who takes long must not make the run fail, nor the run keep the reader out.
TEST_F(Export, DatabaseCanBeReadWhileTheRunGoesOn) {
  QStringList arguments{"run",           "-",    "--parameters",  "p.txt", "--sqlite", "run.sqlite",
                        "--diagnostics", "none", "--mobile-dump", "none",  "--quiet"};
  const std::string path = folder.path() / "run.sqlite";
  folder.write("run.sqlite-wal", "of a run that was killed");
  program.start(arguments);
  const auto send = [this](int frame) {
    program.process().write(QByteArray::fromStdString(walkingLine(frame)));
    program.process().waitForBytesWritten();
  };
  int sent = 0;
  ASSERT_TRUE(program.waitUntil([&] {
    send(++sent);
    return std::filesystem::exists(path) && query(path, "SELECT * FROM sqlite_master") != "" &&
           query(path, "SELECT count(*) FROM frames") != "0";
  }));
  sqlite3* reader = nullptr;
  ASSERT_EQ(sqlite3_open_v2(path.c_str(), &reader, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(reader, "BEGIN; SELECT count(*) FROM frames", nullptr, nullptr, nullptr),
            SQLITE_OK);
  for (int i = 0; i < 10; ++i) {
    send(++sent);
  }
  EXPECT_EQ(program.finish(), 0) << program.errors();
  EXPECT_EQ(query(path, "SELECT count(*) FROM frames"), std::to_string(sent));
  EXPECT_EQ(sqlite3_exec(reader, "COMMIT", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(reader);

  EXPECT_EQ(run(program, {"--sqlite", "run.sqlite"}), 0) << "in the place of that";
  EXPECT_EQ(query(path, "SELECT count(*) FROM frames"), "12");
  EXPECT_FALSE(std::filesystem::exists(path + "-wal")) << "nothing is left beside it";
}

TEST_F(Export, WhatIsWrittenIsWholeWhenTheInputIsNot) {
  folder.write("scene.jsonl", walkingScene(8) + walkingLine(9).substr(0, 90));
  folder.write("tree.dot", "of an earlier run");
  EXPECT_EQ(run(program, {"--events", "e.jsonl", "--sqlite", "run.sqlite", "--graph", "tree.dot"}),
            2);
  EXPECT_EQ(program.errors(), "scene.jsonl:9: not valid JSON\n");
  EXPECT_EQ(query(folder.path() / "run.sqlite", "SELECT count(*) FROM frames"), "8");
  EXPECT_THAT(text("tree.dot"), testing::EndsWith("}\n"));
  EXPECT_EQ(lines("e.jsonl").size(), 1U);
}

TEST_F(Export, RefusesPlacesThatCannotBeWrittenBeforeTheFirstFrame) {
  for (const QString option : {"--events", "--graph", "--mot", "--csv", "--sqlite", "--persons"}) {
    std::filesystem::remove(folder.path() / "groups.jsonl");
    Program attempt(folder.path());
    EXPECT_EQ(run(attempt, {option, "no/such/folder"}), 4) << option.toStdString();
    const std::string errors = attempt.errors();
    EXPECT_THAT(errors, testing::StartsWith("no/such/folder: cannot be written: "));
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1);
    EXPECT_EQ(text("groups.jsonl"), "");
  }
}

}  // namespace

}  // namespace grouptracker
