#include "tests/host/grouping/PathScene.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <fstream>

namespace grouptracker {

namespace {

using Json = nlohmann::json;

/// A made-up scene with the groups that a plain formulation of the method found, which keeps all
/// tracks and goes over every window from the start: pairs and a single walk through, two pairs
/// become one group, three talk in a circle, two wait side by side, others pass; people sway, and
/// now and then one is lost for a frame. The model is the one of that time. That the two pairs have
/// become one is told from the meeting of the groups: these lines without look-ahead are our own.
class GoldenGroups : public testing::Test {
 protected:
  void compare(const std::string& name, double lookAhead) {
    std::ifstream in(std::string(GROUPTRACKER_GOLDEN_GROUPS) + "/" + name);
    std::vector<PeopleFrame> frames;
    std::vector<Json> expected;
    for (std::string text; std::getline(in, text);) {
      Json line = Json::parse(text);
      frames.push_back({line["frame"], line["time"].get<double>(), {}});
      for (const Json& person : line["people"]) {
        frames.back().people.push_back({person[0], {person[1], person[2]}});
      }
      line.erase("people");
      expected.push_back(std::move(line));
    }
    const auto lines =
        groupsOf(frames, lookAhead,
                 EvidenceModel::read(std::string(GROUPTRACKER_GOLDEN_GROUPS) + "/model.json"));
    ASSERT_EQ(lines.size(), expected.size());
    ASSERT_FALSE(lines.empty());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      expectLine(toJson(lines[i]), expected[i]);
    }
  }

 private:
  static Json toJson(const FrameGroups& frame) {
    Json line{{"frame", frame.frame},
              {"time", frame.time ? Json(*frame.time) : Json()},
              {"groups", Json::array()},
              {"alone", frame.alone}};
    for (const FoundGroup& group : frame.groups) {
      Json& json =
          line["groups"].emplace_back(Json{{"id", group.id},
                                           {"members", group.members},
                                           {"since", group.since},
                                           {"position", {group.position.x, group.position.y}},
                                           {"confidence", group.confidence}});
      if (!group.from.empty()) {
        json["from"] = group.from;
      }
    }
    return line;
  }

  /// Numbers with a point may differ in the last of their rounded digits.
  static void expectLine(Json line, Json expected) {
    constexpr double lastDigit = 1.01e-4;
    ASSERT_EQ(line["groups"].size(), expected["groups"].size()) << expected;
    for (std::size_t i = 0; i < line["groups"].size(); ++i) {
      Json& group = line["groups"][i];
      Json& other = expected["groups"][i];
      // The plain formulation tells beliefs as they are.
      const double told = other["confidence"];
      const double belief = std::log(told / (1.0 - told));
      EXPECT_NEAR(group["confidence"], certaintyOf(belief), 5 * lastDigit);
      EXPECT_NEAR(group["position"][0], other["position"][0], lastDigit);
      EXPECT_NEAR(group["position"][1], other["position"][1], lastDigit);
      for (const char* key : {"confidence", "position"}) {
        group.erase(key);
        other.erase(key);
      }
    }
    EXPECT_EQ(line, expected);
  }
};

TEST_F(GoldenGroups, AreThoseOfThePlainFormulationWithLookAhead) {
  compare("look_ahead.jsonl", 3.2);
}

TEST_F(GoldenGroups, AreThoseOfThePlainFormulationWithoutLookAhead) {
  compare("at_once.jsonl", 0.0);
}

}  // namespace

}  // namespace grouptracker
