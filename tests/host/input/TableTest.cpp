#include "host/input/InputFormats.h"
#include "host/input/TableReader.h"
#include "host/input/TrajectoryDatabase.h"
#include "tests/support/base/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

using testing::DoubleNear;
using testing::HasSubstr;
using testing::Optional;

TableChoice columns(const std::string& text) {
  TableChoice choice;
  EXPECT_TRUE(choice.parseColumns(text)) << text;
  return choice;
}

TrackRecording read(const std::string& text, const TableChoice& choice = {}) {
  std::istringstream in(text);
  return readTable(in, "tracks.csv", choice);
}

/// Every step as "frame: person at x y, ...".
std::string told(ObservationTable& people) {
  std::ostringstream text;
  for (ObservationStep step; people.next(step);) {
    text << step.frame << ':';
    for (const Observation& seen : step.observations) {
      text << ' ' << seen.person << " at " << seen.position->x << ' ' << seen.position->y;
    }
    text << '\n';
  }
  return text.str();
}

std::string told(const std::string& text, const TableChoice& choice = {}) {
  return told(*read(text, choice).people);
}

void makeDatabase(const std::string& path, const std::string& sql) {
  sqlite3* handle = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &handle), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(handle);
}

const char* const twoPeople = "10: 3 at 1.5 2 7 at -4 0.25\n20: 3 at 1.75 2\n";

struct Spelling {
  const char* name;
  std::string text;
  std::string columns;
  double unit = 0.0;  ///< metres, 0 when the user says nothing
};

class TableSpellings : public testing::TestWithParam<Spelling> {};

TEST_P(TableSpellings, TellTheSamePeople) {
  const Spelling& spelling = GetParam();
  TableChoice choice = spelling.columns.empty() ? TableChoice() : columns(spelling.columns);
  choice.unit = spelling.unit > 0.0 ? std::optional(spelling.unit) : std::nullopt;
  EXPECT_EQ(told(spelling.text, choice), twoPeople);
}

INSTANTIATE_TEST_SUITE_P(
    Table, TableSpellings,
    testing::Values(
        Spelling{"plain", "frame,id,x,y\n10,3,1.5,2\n10,7,-4,0.25\n20,3,1.75,2\n", ""},
        Spelling{"tabsAndOtherOrder",
                 "\xEF\xBB\xBFY\tTrack ID\tnote\tX\tFrame\r\n2\t3\t\t1.5\t10\r\n"
                 "0.25\t7\t\"a\tb\"\t-4\t10\r\n\r\n2\t3\t\t1.75\t20\r\n",
                 ""},
        Spelling{"decimalCommas",
                 "frame;person;\"x; east\";y\n10;3;1,5;2\n10;7;-4;0,25\n20;3;1,75;2\n",
                 "x=x; east"},
        Spelling{"namedByTheUser", "t,ped,x,y\n10,3,1.5,2\n10,7,-4,0.25\n20,3,1.75,2\n",
                 "frame=t,id=ped"},
        Spelling{"withoutNames", "10 3 1.5 0 2\n10 7 -4 0 0.25\n20 3 1.75 0 2", "frame,id,x,z,y"},
        Spelling{"quoted",
                 "\"frame\",\"id\",\"x\",\"y\"\n\"10\",3,1.5,2\n10,7,\"-4\",0.25\n20,3,1.75,2", ""},
        Spelling{
            "laboratory",
            "# description: one \"quote\n#framerate: 16.00\n# PersID\tFrame\tX/cm\tY/cm\tZ/cm\n"
            "3 10 150 200 170\n3  20 175 200 170\n7 10 -400 25 165\n",
            ""},
        Spelling{"laboratoryWithoutNames",
                 "# framerate: 16.00\n3 10 150 200 170\n3 20 175 200 170\n7 10 -400 25 165\n", "",
                 0.01},
        Spelling{
            "laboratoryInMetres",
            "# id frame x[in m] y[in m] z[in m]\n3 10 1.5 2 1\n3 20 1.75 2 1\n7 10 -4 0.25 1\n",
            ""}),
    [](const auto& instance) { return instance.param.name; });

TEST(Table, SaysInWhichLineItIsWrong) {
  const auto error = [](const std::string& text, const TableChoice& choice = {}) {
    return errorOf([&] { read(text, choice); });
  };
  const std::string header = "frame,id,x,y\n";
  EXPECT_EQ(error(header), "no error");
  EXPECT_EQ(error(header + "1,2,0\n"), "tracks.csv:2: 4 fields are expected, not 3");
  EXPECT_EQ(error(header + "1,2,,0\n"), "tracks.csv:2: a number is expected instead of \"\"");
  EXPECT_EQ(error(header + "1,2,inf,0\n"), "tracks.csv:2: a number is expected instead of \"inf\"");
  EXPECT_EQ(error(header + "1,,0,0\n"), "tracks.csv:2: the id is missing");
  EXPECT_EQ(error(header + "1,Anna,0,0\n1,Anna,0,0\n"),
            "tracks.csv:3: person Anna is observed twice at frame 1, first on line 2");
  EXPECT_EQ(error(header + "1.5,2,0,0\n"),
            "tracks.csv:2: the frame must be a whole number from 0 to 1000000000000000");
  EXPECT_EQ(error(header + "1,2,1e12,0\n"),
            "tracks.csv:2: the position lies too far away to be metres");
  EXPECT_EQ(error(header + "\"1,2,0,0\n"), "tracks.csv:2: a quote is not closed on its line");
  EXPECT_EQ(error(header + "5,2,0,0\n5,2,0,0\n"),
            "tracks.csv:3: person 2 is observed twice at frame 5, first on line 2");
  EXPECT_EQ(error("time,id,x,y\n0.5,2,0,0\n0.5,2,0,0\n"),
            "tracks.csv:3: person 2 is observed twice at 0.5 s, first on line 2");
  EXPECT_EQ(error("time,id,x,y\n-1,2,0,0\n"),
            "tracks.csv:2: the time must be from 0 to 10000000000 seconds");
  EXPECT_EQ(error("time,id,x,y\n1700000000000,2,0,0\n"),
            "tracks.csv:2: the time must be from 0 to 10000000000 seconds, not in smaller units");
  EXPECT_EQ(error("# framerate: 0\n"),
            "tracks.csv:1: the frame rate must be above 0 and at most 10000");
  EXPECT_THAT(error("1,2,3,4\n"), HasSubstr("tracks.csv:1: no line before this one names"));
  EXPECT_EQ(
      error("t,id,x,y\n"),
      "tracks.csv:1: no column holds the frame or time; there are \"t\", \"id\", \"x\", \"y\": "
      "say which with --columns, such as frame=t,id=ped,x=px,y=py");
  EXPECT_EQ(error(header, columns("id=ped")), "tracks.csv:1: no column is called \"ped\"");
}

TEST(Table, GoesOnBehindAWrongLineWhenItIsOnlyChecked) {
  std::istringstream in("frame,id,x,y\n1,2,0,0\n1,3\n2,2,x,0\n2,2,1,0\n");
  int problems = 0;
  const auto recording = readTable(in, "tracks.csv", {}, [&](const InputError&) { ++problems; });
  EXPECT_EQ(problems, 2);
  EXPECT_EQ(told(*recording.people), "1: 2 at 0 0\n2: 2 at 1 0\n");
}

TEST(Table, TimesMakeFramesEvenIfTheyAreNotQuiteRegular) {
  //  seconds  0.4  0.802  1.2  (1.6 is missing)  1.999
  TrackRecording recording =
      read("time,id,x,y\n1.2,1,3,0\n0.4,1,1,0\n0.802,1,2,0\n1.999,1,5,0\n0.4,2,0,0\n");
  std::vector<std::pair<std::int64_t, double>> moments;
  for (ObservationStep step; recording.people->next(step);) {
    moments.emplace_back(step.frame, *step.time);
  }
  ASSERT_EQ(moments.size(), 5U);
  EXPECT_EQ(moments[0], std::pair(std::int64_t{1}, 0.4));
  EXPECT_EQ(moments[1], std::pair(std::int64_t{2}, 0.802));
  EXPECT_EQ(moments[4], std::pair(std::int64_t{5}, 1.999));
  EXPECT_THAT(recording.rate, Optional(DoubleNear(2.5, 0.01)));
}

TEST(Table, FindsTheFrameRate) {
  EXPECT_THAT(read("#framerate: 16.00 fps\n1 1 0 0\n").rate, Optional(16.0));
  EXPECT_THAT(read("frame,time,id,x,y\n30,1,7,0,0\n45,1.5,7,0,0\n").rate, Optional(30.0));
  EXPECT_FALSE(read("frame,id,x,y\n30,7,0,0\n").rate);
  EXPECT_NE(read("# framerate: 5\n1 1 0 0\n").note, "");
}

TEST(TableChoice, UnderstandsWhatTheUserSaysAboutColumns) {
  for (const char* const wrong : {"", "frame", "frame,id,x", "frame,id,x,y,y", "frame=", "speed=v",
                                  "frame=a,frame=b", "frame,time,id,x,y", "frame=t,id"}) {
    EXPECT_FALSE(TableChoice().parseColumns(wrong)) << wrong;
  }
  EXPECT_EQ(columns("time,id,skip,x,y").order.size(), 5U);
}

TEST(TrajectoryDatabase, IsReadWithItsFrameRate) {
  const TempFolder folder;
  const std::string path = folder.path() / "walk.sqlite";
  makeDatabase(path,
               "CREATE TABLE metadata (key TEXT, value TEXT);"
               "INSERT INTO metadata VALUES ('version', '2'), ('fps', '12.5');"
               "CREATE TABLE trajectory_data (frame INTEGER, id INTEGER, pos_x REAL, pos_y REAL,"
               " ori_x REAL, ori_y REAL);"
               "INSERT INTO trajectory_data VALUES (20, 3, 1.75, 2, 0, 1), (10, 3, 1.5, 2, 0, 1),"
               " (10, 7, -4, 0.25, 0, 1);");
  const TrackRecording recording = readTrajectoryDatabase(path, {});
  EXPECT_EQ(told(*recording.people), twoPeople);
  EXPECT_THAT(recording.rate, Optional(12.5));
}

TEST(TrajectoryDatabase, SaysWhatIsWrong) {
  const TempFolder folder;
  const auto error = [&](const std::string& sql) {
    const std::string path = folder.path() / "wrong.sqlite";
    std::filesystem::remove(path);
    makeDatabase(path, sql);
    return errorOf([&] { readTrajectoryDatabase(path, {}); });
  };
  const std::string make =
      "CREATE TABLE trajectory_data (frame, id, pos_x, pos_y);"
      "INSERT INTO trajectory_data VALUES (1, 2, 0, 0), ";
  EXPECT_THAT(error(make + "(1, 'Anna', 0, 0)"),
              HasSubstr("wrong.sqlite:2: a number is expected instead of \"Anna\""));
  EXPECT_THAT(error(make + "(1, 3, NULL, 0)"),
              HasSubstr("wrong.sqlite:2: a number is expected instead of \"\""));
  EXPECT_THAT(error(make + "(1, 3, 9e999, 0)"), HasSubstr("wrong.sqlite:2: "));
  EXPECT_THAT(error("CREATE TABLE other (a)"),
              HasSubstr("wrong.sqlite: table \"other\": no column"));
  EXPECT_THAT(error(make + "(1, 3, 0, 0); CREATE TABLE metadata (key, value);"
                           "INSERT INTO metadata VALUES ('fps', 'fast')"),
              HasSubstr("wrong.sqlite: metadata: a number is expected instead of \"fast\""));
  const std::string cut = folder.path() / "cut.sqlite";
  folder.write("cut.sqlite", textOf(folder.path() / "wrong.sqlite").substr(0, 1500));
  EXPECT_THAT(errorOf([&] { readTrajectoryDatabase(cut, {}); }),
              HasSubstr("cut.sqlite: cannot be"));
}

TEST(InputFormats, AreKnownByTheirContent) {
  const TempFolder folder;
  const auto framesOf = [&](const std::string& name, const InputOptions& options = {}) {
    int frames = 0;
    const OpenedInput input = openInput(folder.path() / name, options);
    for (InputFrame frame; input.frames->next(frame);) {
      ++frames;
    }
    return frames;
  };
  folder.write("comma.txt", "frame,id,x,y\n1,2,0,0\n2,2,1,0\n");
  folder.write("laboratory.txt", "# id frame x y z\n1 1 0 0 0\n1 2 0 0 0\n");
  folder.write("walk.txt", "1 2 0 0 0 0 0 0\n2 2 0 0 0 0 0 0\n3 2 0 0 0 0 0 0\n");
  folder.write("obsmat.txt", textOf(folder.path() / "walk.txt"));
  makeDatabase(folder.path() / "tracks.db",
               "CREATE TABLE trajectory_data (frame, id, pos_x, pos_y);"
               "INSERT INTO trajectory_data VALUES (1, 2, 0, 0)");
  EXPECT_EQ(framesOf("comma.txt"), 2);
  EXPECT_EQ(framesOf("laboratory.txt"), 2);
  EXPECT_EQ(framesOf("walk.txt"), 3);
  EXPECT_EQ(framesOf("."), 3) << "a folder without H.txt";
  EXPECT_EQ(framesOf("tracks.db"), 1);
  // Numbers between commas are boxes, unless the user says what they are.
  folder.write("numbers.txt", "1,2,0,0,0,0\n2,2,0,0,0,0\n3,2,0,0,0,0\n");
  InputOptions options;
  EXPECT_THAT(errorOf([&] { framesOf("numbers.txt", options); }), HasSubstr("numbers.txt"));
  options.table = columns("frame,id,x,y,vx,vy");
  EXPECT_EQ(framesOf("numbers.txt", options), 3);
}

}  // namespace

}  // namespace grouptracker
