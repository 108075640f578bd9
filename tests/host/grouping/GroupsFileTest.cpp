#include "host/grouping/FrameGroupsWriter.h"
#include "tests/host/grouping/PathScene.h"
#include "tests/support/base/Lines.h"
#include "tests/support/base/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

namespace grouptracker {

namespace {

using Json = nlohmann::json;
using Adapter = valijson::adapters::NlohmannJsonAdapter;

/// Whether a line agrees with the schema that the documents give to other programs.
class GroupsFile : public testing::Test {
 protected:
  GroupsFile() : m_source(Json::parse(textOf(GROUPTRACKER_GROUPS_SCHEMA))) {
    valijson::SchemaParser(valijson::SchemaParser::kDraft7)
        .populateSchema(Adapter(m_source), m_schema);
  }

  bool agrees(const std::string& line) {
    const Json value = Json::parse(line);
    return valijson::Validator().validate(m_schema, Adapter(value), nullptr);
  }

  TempFolder folder;

 private:
  Json m_source;
  valijson::Schema m_schema;
};

const std::string sampleLine =
    R"({"frame": 930, "time": 62.04, "groups": [{"id": 4, "members": [3, 7], "since": 780, )"
    R"("position": [1.25, -0.3333], "confidence": 0.9312, "from": [2]}, )"
    R"({"id": 5, "members": [8, 11, 12], "since": -930, "position": [0, 7], "confidence": 1}], )"
    R"("alone": [9]})";

TEST_F(GroupsFile, HoldsOneRoundedLineAFrame) {
  FrameGroups frame{930, 62.04, {}, {9}};
  frame.groups.push_back({4, {3, 7}, 780, {1.25, -1.0 / 3}, 0.931249, {2}});
  frame.groups.push_back({5, {8, 11, 12}, -930, {-1e-9, 7.0}, 1.0, {}});
  const std::string path = (folder.path() / "groups.jsonl").string();
  {
    FrameGroupsWriter writer(path);
    writer.writeHeader({"grouptracker 1.2", "a \"b\".txt", std::nullopt});
    writer.write(frame);
    writer.write({931, std::nullopt, {}, {}});
  }
  EXPECT_THAT(
      linesOf(textOf(path)),
      testing::ElementsAre(
          R"({"header": {"version": 1, "program": "grouptracker 1.2", "input": "a \"b\".txt", "rate": null}})",
          sampleLine, R"({"frame": 931, "time": null, "groups": [], "alone": []})"));
  for (const std::string& line : linesOf(textOf(path))) {
    EXPECT_TRUE(agrees(line)) << line;
  }
}

TEST_F(GroupsFile, OutputOfAWholeSceneAgreesWithTheSchema) {
  PathScene scene;
  for (PersonId id = 1; id <= 6; ++id) {
    const double side = id % 2 == 0 ? 0.7 : 0.0;
    const double start = 2.0 * ((id - 1) / 2);
    scene.person(id, {{start, -8, side + id}, {start + 8, 0, side}, {20, 12, side}});
  }
  std::size_t groups = 0;
  for (const FrameGroups& frame : groupsOf(scene.at(5))) {
    EXPECT_TRUE(agrees(toLine(frame)));
    groups += frame.groups.size();
  }
  EXPECT_GT(groups, 100U);
}

TEST_F(GroupsFile, SchemaNoticesWhatIsNoGroup) {
  Json line = Json::parse(sampleLine);
  ASSERT_TRUE(agrees(line.dump()));
  const auto refuses = [&](const char* place, const Json& value) {
    Json wrong = line;
    wrong[Json::json_pointer(place)] = value;
    return !agrees(wrong.dump());
  };
  EXPECT_TRUE(refuses("/groups/0/members", {3}));
  EXPECT_TRUE(refuses("/groups/0/members", {3, 3}));
  EXPECT_TRUE(refuses("/groups/0/id", 0));
  EXPECT_TRUE(refuses("/groups/0/confidence", 1.5));
  EXPECT_TRUE(refuses("/groups/0/position", {1, 2, 3}));
  EXPECT_TRUE(refuses("/groups/0/from", Json::array()));
  EXPECT_TRUE(refuses("/time", "62"));
  EXPECT_TRUE(refuses("/alone", {"anna", 9.5}));
  line.erase("alone");
  EXPECT_FALSE(agrees(line.dump()));
}

}  // namespace

}  // namespace grouptracker
