#include "tests/host/output/WrittenSteps.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/GroupsSchema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace grouptracker {

namespace {

using Json = nlohmann::json;

const std::string sampleLine =
    R"({"frame": 930, "time": 62.04, "groups": [{"id": 4, "members": [3, 7], "since": 780, )"
    R"("position": [1.25, -0.3333], "confidence": 0.9312}, )"
    R"({"id": 5, "members": [8, 11, 12], "since": 930, "position": [0, 7], "confidence": 1}], )"
    R"("alone": [9]})";

RunGroup group(std::uint32_t id, const std::vector<std::uint32_t>& persons, const cv::Point3f& at) {
  RunGroup group;
  group.id = id;
  group.isVisible = true;
  group.since = -780;
  group.position = at;
  group.confidence = 0.9312;
  for (const std::uint32_t person : persons) {
    group.members.push_back({{}, person, {}});
  }
  return group;
}

RunStep stepOf(std::uint32_t number, const std::vector<RunGroup>& groups) {
  RunStep step;
  step.source = GroupSource::evidence;
  step.frame = number;
  step.reportedFrame = static_cast<std::int32_t>(number);
  step.inputFrame = std::int64_t{number} * 6 - 6;
  step.persons = {{3, {}}, {7, {}}, {8, {}}, {4294967295U, {}}};
  step.groups = groups;
  return step;
}

TEST(GroupsFile, IsReadAsItWasWritten) {
  RunStep first =
      stepOf(1, {group(4, {3, 7}, {12345.6789F, -0.1F, 0}), group(5, {8, 4294967295U}, {})});
  first.time = 1.000001;
  RunStep second = stepOf(2, {group(6, {3, 8}, {0.0001F, 1e7F, 0})});
  second.groups[0].from = {4, 5};
  RunStep nobody = stepOf(3, {});
  nobody.persons.clear();
  const RunSteps steps{first, second, nobody};
  const std::string text = writtenFile(steps);
  EXPECT_TRUE(stepsIn(text) == steps) << text;
  EXPECT_EQ(writtenFile(stepsIn(text)), text);
}

TEST(GroupsFile, IsReadBehindItsHeaderAndByWhoeverNeedsOnlyTheGroups) {
  const auto steps = stepsIn(R"({"header": {"version": 1}})"
                             "\n" +
                             sampleLine + "\n");
  ASSERT_EQ(steps.size(), 1U);
  EXPECT_EQ(steps[0].source, GroupSource::evidence);
  EXPECT_EQ(steps[0].time, 62.04);
  EXPECT_EQ(steps[0].persons.size(), 6U);
  const auto bare =
      stepsIn(R"({"frame": 5, "groups": [{"id": 1, "members": [2, 3]}], "alone": []})",
              RunFilePart::groupings);
  EXPECT_EQ(bare[0].groups[0].members[1].person, 3U);
  EXPECT_EQ(errorOf([] { stepsIn(R"({"frame": 5, "groups": [], "alone": []})"); }),
            "g.jsonl:1: \"time\" is missing");
}

TEST(GroupsFile, SchemaNoticesWhatIsNoGroup) {
  Json line = Json::parse(sampleLine);
  ASSERT_EQ(groupsFault(writtenFile({stepsIn(sampleLine)})).substr(0, 7), "members")
      << "since is 780";
  line["groups"][0]["since"] = 930;
  ASSERT_EQ(groupsFault(line.dump()), "");
  const auto refuses = [&](const char* place, const Json& value) {
    Json wrong = line;
    wrong[Json::json_pointer(place)] = value;
    return !groupsFault(wrong.dump()).empty();
  };
  EXPECT_TRUE(refuses("/groups/0/members", {3}));
  EXPECT_TRUE(refuses("/groups/0/members", {3, 3}));
  EXPECT_TRUE(refuses("/groups/0/members", {3, 8}));
  EXPECT_TRUE(refuses("/groups/0/id", 0));
  EXPECT_TRUE(refuses("/groups/0/confidence", 1.5));
  EXPECT_TRUE(refuses("/groups/0/position", {1, 2, 3}));
  EXPECT_TRUE(refuses("/groups/0/from", Json::array()));
  EXPECT_TRUE(refuses("/groups/0/from", {2}));
  EXPECT_TRUE(refuses("/time", "62"));
  EXPECT_TRUE(refuses("/alone", {"anna", 9.5}));
  line.erase("alone");
  EXPECT_NE(groupsFault(line.dump()), "");
}

}  // namespace

}  // namespace grouptracker
