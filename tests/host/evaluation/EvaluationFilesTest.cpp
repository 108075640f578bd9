#include "host/evaluation/FrameScores.h"
#include "host/evaluation/ScoredSteps.h"
#include "host/evaluation/TruthReader.h"
#include "tests/support/base/Texts.h"

#include <gmock/gmock.h>

#include <sstream>

namespace grouptracker {

namespace {

Grouping listsOf(const std::string& text) {
  std::istringstream in(text);
  return readGroupLists(in, "groups.txt").whole();
}

TEST(GroupLists, MayOverlapRepeatAndHoldHeadersBlankLinesAndSinglePersons) {
  EXPECT_EQ(listsOf("group members\n\n 5 4\r\n7\n 8,9;10\n\n4 6 4\n11"),
            (Grouping{{4, 5, 6}, {8, 9, 10}}));
  EXPECT_EQ(listsOf("1 2\n"), (Grouping{{1, 2}})) << "a first line of persons is no header";
}

TEST(GroupLists, NameTheWrongLine) {
  EXPECT_EQ(errorOf([] { listsOf("1 2\n3 x\n"); }),
            "groups.txt:2: the persons of a group are expected, whole numbers from 0 on");
  EXPECT_THAT(errorOf([] { listsOf("1 2\n3 -4\n"); }), testing::StartsWith("groups.txt:2: "));
  EXPECT_THAT(errorOf([] { listsOf("1 2x\n3 4\n"); }), testing::StartsWith("groups.txt:1: "))
      << "a header holds no numbers";
}

TEST(GroupsPerFrame, AreListsOrObjectsAndMayHaveIds) {
  std::istringstream in(R"({"frame": 7, "groups": [[1, 2], {"id": 3, "persons": [4, 5]}]})");
  EXPECT_EQ(readGroupsPerFrame(in, "truth.jsonl").at(7), (Grouping{{1, 2}, {4, 5}}));
  std::istringstream named(
      R"({"frame": 7, "groups": [[9], [5, 6], [1, 2], [2, 3]], "ids": [4, 3, 8, 9]})");
  const GroupTruth truth = readGroupsPerFrame(named, "truth.jsonl");
  EXPECT_EQ(truth.at(7), (Grouping{{1, 2, 3}, {5, 6}}));
  EXPECT_EQ(truth.idsAt(7), (GroupIds{8, 3}));
  std::istringstream wrong("{\"frame\": 7, \"groups\": []}\n{\"groups\": [[1]]}");
  EXPECT_EQ(errorOf([&] { readGroupsPerFrame(wrong, "truth.jsonl"); }),
            "truth.jsonl:2: \"frame\" is missing");
}

TEST(GroupsOfARun, AreThoseThatAreVisibleAtFramesOfTheInput) {
  std::istringstream lines(
      R"({"frame": 1, "reportedFrame": 0, "inputFrame": null, "persons": [], "groups": []})"
      "\n"
      R"({"frame": 2, "reportedFrame": 1, "inputFrame": 780, "persons": [9, 3, 7], "groups": [)"
      R"({"id": 4, "persons": [7, 3, null], "properties": {"Visible": true, "Merge": 2}},)"
      R"({"id": 5, "persons": [9], "properties": {"Visible": "false"}},)"
      R"({"id": 6, "persons": [], "properties": {}}]})");
  const GroupedFrames run = readScored(lines, "groups.jsonl");
  ASSERT_EQ(run.size(), 1U);
  EXPECT_EQ(run[0].frame, 780);
  EXPECT_EQ(personsOf(run[0]), (std::vector<Person>{3, 7, 9}));
  ASSERT_EQ(run[0].groups.size(), 1U);
  EXPECT_EQ(run[0].groups[0].members, (PersonGroup{3, 7}));
  EXPECT_EQ(run[0].groups[0].from, (std::vector<GroupId>{2, 4})) << "it has merged just now";
}

TEST(FrameScores, TellsWhoIsMissedAndWhoIsTooManyAtEachFrame) {
  std::istringstream lines(
      R"({"frame": 2, "reportedFrame": 1, "inputFrame": 780, "persons": [1, 2, 3, 4, 5, 6, 7, 8],)"
      R"( "groups": [{"id": 4, "persons": [1, 2, 4], "properties": {"Visible": true}},)"
      R"( {"id": 5, "persons": [7, 8], "properties": {"Visible": true}}]})");
  const GroupedFrames run = readScored(lines, "groups.jsonl");
  const TempFolder folder;
  const std::string file = folder.path() / "errors.csv";
  writeErrorList(run, stepsOf(run, GroupTruth({{1, 2, 3}, {5, 6}, {7, 8}})), file);
  EXPECT_EQ(textOf(file),
            "frame,person,error,missing,extra\n"
            "780,1,wrong companions,3,4\n"
            "780,2,wrong companions,3,4\n"
            "780,3,not found,1 2,\n"
            "780,4,not a member,,1 2\n"
            "780,5,not found,6,\n"
            "780,6,not found,5,\n");
}

}  // namespace

}  // namespace grouptracker
