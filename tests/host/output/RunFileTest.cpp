#include "tests/host/output/WrittenSteps.h"
#include "tests/support/base/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace grouptracker {

namespace {

constexpr auto infinity = std::numeric_limits<float>::infinity();

/// A group with everything that a group can have.
RunGroup fullGroup() {
  RunGroup group;
  group.id = 4;
  group.members = {{90, 3, {}}, {4000000000U, {}, {}}};
  group.position = cv::Point3f(12.78F, -0.1F, 1e-7F);
  group.box2D = cv::Rect(1, -2, 3, 4);
  group.box3D = {-10000, -10000, -10000, 10000, 10000, 1e-7F};
  group.properties = {{"Merge", std::int64_t{-1}},
                      {"NumberOfMobiles", std::int64_t{2}},
                      {"TypeOfGroup", "CROWD \"\\\n\u00e9"},
                      {"Visible", true}};
  group.decodeProperties();
  return group;
}

RunStep stepWith(const std::vector<RunGroup>& groups) {
  RunStep step;
  step.frame = 31;
  step.reportedFrame = 26;
  step.inputFrame = 930;
  step.persons = {{7, {}}, {3, {}}, {7, {}}};
  step.groups = groups;
  return step;
}

TEST(RunFileWriter, KeepsTypesAndExactNumbers) {
  RunStep first;
  first.frame = 4294967295U;
  first.reportedFrame = -2;
  RunGroup group = fullGroup();
  group.position->z = infinity;
  RunGroup empty;
  empty.id = 5;
  const auto lines = linesOf(writtenFile({first, stepWith({group, empty})}));
  ASSERT_EQ(lines.size(), 2U) << "lines are there while the writer is still open";
  EXPECT_EQ(lines[0], R"({"frame": 4294967295, "reportedFrame": -2, "inputFrame": null, )"
                      R"("persons": [], "groups": []})");
  EXPECT_EQ(lines[1],
            R"({"frame": 31, "reportedFrame": 26, "inputFrame": 930, "persons": [7, 3, 7], )"
            R"("groups": [{"id": 4, "mobiles": [90, 4000000000], "persons": [3, null], )"
            R"("position": [12.779999732971191, -0.10000000149011612, null], )"
            R"("box2d": [1, -2, 3, 4], )"
            R"("box3d": [-10000, -10000, -10000, 10000, 10000, 1.0000000116860974e-07], )"
            R"("properties": {"Merge": -1, "NumberOfMobiles": 2, )"
            R"("TypeOfGroup": "CROWD \"\\\u000aé", "Visible": true}}, )"
            R"({"id": 5, "mobiles": [], "persons": [], "properties": {}}]})");
}

TEST(RunFile, ReadsWhatWasWritten) {
  RunStep early;
  early.frame = 1;
  early.reportedFrame = std::numeric_limits<std::int32_t>::min();
  RunStep nobody = stepWith({});
  nobody.persons.clear();
  nobody.inputFrame = std::numeric_limits<std::int64_t>::min();
  RunGroup late = fullGroup();
  late.id = 4294967295U;
  late.box2D = cv::Rect(-2147483647, 0, 2147483647, 0);
  RunGroup odd;
  odd.id = 2147483648U;
  odd.properties = {{"", ""},
                    {"MobileSplit", "4;9;"},
                    {"Visible", "false"},
                    {"a", {}},
                    {"b", false},
                    {"c", 0.1},
                    {"d", 1e300},
                    {"e", std::numeric_limits<std::uint64_t>::max()},
                    {"f", std::numeric_limits<std::int64_t>::min()},
                    {"g \u20ac\t", "\u0001 \U0001F600"}};
  odd.decodeProperties();
  const RunSteps steps{early, nobody, stepWith({fullGroup(), odd, late}), stepWith({RunGroup()})};
  const std::string text = writtenFile(steps);
  const RunSteps read = stepsIn(text);
  EXPECT_TRUE(read == steps) << text;
  EXPECT_EQ(writtenFile(read), text);
}

TEST(RunFile, KeepsWhatIsNotFiniteAsNoNumber) {
  RunGroup group = fullGroup();
  group.position->x = infinity;
  (*group.box3D)[5] = std::nanf("");
  const std::string text = writtenFile({stepWith({group})});
  const RunSteps read = stepsIn(text);
  EXPECT_TRUE(std::isnan(read[0].groups[0].position->x));
  EXPECT_TRUE(std::isnan((*read[0].groups[0].box3D)[5]));
  EXPECT_EQ(writtenFile(read), text);
}

TEST(RunFileReader, DecodesThePropertiesAndPassesOverUnknownKeys) {
  const auto steps =
      stepsIn(R"({"frame": 31, "reportedFrame": 26, "inputFrame": 930, "persons": [], "new": {}, )"
              R"("groups": [{"id": 4, "mobiles": [90], "persons": [3], "new": [1], )"
              R"("properties": {"Visible": true, "Merge": -1, "Split": 2, "new": [1]}}, )"
              R"({"id": 6, "mobiles": [], "persons": [], "properties": {"Visible": "false"}}]})");
  ASSERT_EQ(steps.size(), 1U);
  EXPECT_TRUE(steps[0].groups[0].isVisible);
  EXPECT_EQ(steps[0].groups[0].merge, -1);
  EXPECT_EQ(steps[0].groups[0].split, 2);
  EXPECT_FALSE(steps[0].groups[1].isVisible);
  EXPECT_FALSE(steps[0].groups[1].merge);
}

TEST(RunFileReader, NamesDamagedLines) {
  const std::string whole = writtenFile({stepWith({fullGroup()})});
  const auto problem = [&whole](const std::string& from, const std::string& to) {
    std::string line = whole;
    line.replace(line.find(from), from.size(), to);
    const std::string error = errorOf([&] { stepsIn(whole + line); });
    return error.starts_with("g.jsonl:2: ") ? error.substr(11) : "elsewhere: " + error;
  };
  EXPECT_EQ(problem("properties", "prop"), "groups[0]: \"properties\" is missing");
  EXPECT_EQ(problem("\"frame\": 31, ", ""), "\"frame\" is missing");
  EXPECT_EQ(problem("[3, null]", "[3]"), "groups[0]: mobiles and persons must be of one length");
  EXPECT_EQ(problem("12.779999732971191, ", ""),
            "groups[0]: position must be an array of 3 numbers");
  EXPECT_EQ(problem("[1, -2, 3, 4]", "[1, -2, 3]"),
            "groups[0]: box2d must be an array of 4 integers");
  EXPECT_EQ(problem("\"Merge\": -1", "\"Merge\": \"-1\""),
            "groups[0]: Merge must be an integer from -9223372036854775808 to "
            "9223372036854775807");
  EXPECT_EQ(problem("Visible\": true}}]}\n", "Visib"), "not valid JSON");
}

}  // namespace

}  // namespace grouptracker
