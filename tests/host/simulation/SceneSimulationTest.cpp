#include "host/base/OutputPlace.h"
#include "host/simulation/SimulatedView.h"
#include "tests/host/simulation/SimulatedScene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace grouptracker {

namespace {

using nlohmann::json;
using Persons = std::set<unsigned int>;
using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> textFiles{"scene.jsonl",    "truth.jsonl", "true_groups.jsonl",
                                         "events.jsonl",   "groups.txt",  "context.json",
                                         "calibration.yml"};

SimulationOptions shortScene(std::uint64_t seed) {
  SimulationOptions options;
  options.seed = seed;
  options.people = 20;
  options.frames = 150;
  return options;
}

SimulationOptions withoutEvents(SimulationOptions options) {
  options.joins = options.leaves = options.merges = options.splits = 0;
  return options;
}

Persons observed(const json& frame) {
  Persons ids;
  for (const auto& actor : frame["actors"]) {
    ids.insert(actor["id"].get<unsigned int>());
  }
  return ids;
}

TEST(SceneSimulation, TheSameSeedGivesTheSameBytesAndAnotherOneAnotherScene) {
  SimulationOptions options = shortScene(3);
  options.frames = 60;
  options.images = true;
  const SimulatedScene once(options);
  const SimulatedScene again(options);
  for (const auto& name : textFiles) {
    EXPECT_FALSE(once.text(name).empty()) << name;
    EXPECT_EQ(once.text(name), again.text(name)) << name;
  }
  for (const auto& frame : once.lines("scene.jsonl")) {
    const auto image = frame["image"].get<std::string>();
    EXPECT_FALSE(once.text(image).empty()) << image;
    EXPECT_EQ(once.text(image), again.text(image)) << image;
  }
  EXPECT_NE(once.text("scene.jsonl"), SimulatedScene(shortScene(4)).text("scene.jsonl"));
}

TEST(SceneSimulation, TheTruthHoldsEverybodyWhomTheSceneShowsInGroupsThatShareNobody) {
  for (const std::uint64_t seed : {1, 2, 3}) {
    const SimulatedScene scene(shortScene(seed));
    const auto frames = scene.lines("scene.jsonl");
    const auto truth = scene.lines("truth.jsonl");
    ASSERT_EQ(frames.size(), 150U);
    ASSERT_EQ(truth.size(), 150U);
    for (std::size_t i = 0; i < frames.size(); ++i) {
      EXPECT_EQ(truth[i]["frame"], i + 1);
      const auto persons = truth[i]["persons"].get<Persons>();
      EXPECT_EQ(observed(frames[i]), persons);
      EXPECT_EQ(truth[i]["ids"].size(), truth[i]["groups"].size());
      Persons grouped;
      for (const auto& group : truth[i]["groups"]) {
        EXPECT_GE(group.size(), 2U);
        for (const unsigned int person : group) {
          EXPECT_TRUE(grouped.insert(person).second) << "twice: " << person;
          EXPECT_TRUE(persons.contains(person)) << "not in view: " << person;
        }
      }
    }
  }
}

TEST(SceneSimulation, PeopleAreObservedInTheImageOnly) {
  const cv::Rect image({}, SimulatedView::imageSize);
  for (const auto& frame : SimulatedScene(shortScene(5)).lines("scene.jsonl")) {
    for (const auto& mobile : frame["mobiles"]) {
      const auto box = mobile["box2d"].get<std::vector<int>>();
      const cv::Rect rect(box[0], box[1], box[2], box[3]);
      EXPECT_EQ(rect & image, rect);
    }
  }
}

TEST(SceneSimulation, MissingAndNoiseChangeWhatIsSeenAndNotWhatIsTrue) {
  const SimulatedScene clean(shortScene(6));
  SimulationOptions options = shortScene(6);
  options.missed = 0.3;
  const SimulatedScene patchy(options);
  options.missed = 0.0;
  options.noise = 0.1;
  const SimulatedScene noisy(options);

  EXPECT_EQ(clean.text("truth.jsonl"), patchy.text("truth.jsonl"));
  EXPECT_EQ(clean.text("truth.jsonl"), noisy.text("truth.jsonl"));
  const auto all = static_cast<double>(clean.mobiles());
  EXPECT_NEAR(static_cast<double>(patchy.mobiles()) / all, 0.7, 0.05);
  EXPECT_EQ(clean.mobiles(), noisy.mobiles());
  EXPECT_NE(clean.text("scene.jsonl"), noisy.text("scene.jsonl"));
}

TEST(SceneSimulation, GroupsHaveTheSizesThatWereAskedFor) {
  SimulationOptions options = withoutEvents(shortScene(7));
  options.groupSizes = {2, 3, 6};
  options.people = 13;
  options.frames = 600;
  const SimulatedScene scene(options);
  std::map<int, Persons> members;
  for (const auto& frame : scene.lines("truth.jsonl")) {
    for (std::size_t i = 0; i < frame["ids"].size(); ++i) {
      members[frame["ids"][i]].merge(frame["groups"][i].get<Persons>());
    }
  }
  std::vector<std::size_t> sizes;
  for (const auto& [group, persons] : members) {
    sizes.push_back(persons.size());
  }
  std::sort(sizes.begin(), sizes.end());
  EXPECT_THAT(sizes, ElementsAre(2, 3, 6));
}

TEST(SceneSimulation, EventsComeAboutAsOftenAsAskedAndTheTruthFollowsThem) {
  SimulationOptions options = shortScene(8);
  options.people = 60;
  options.frames = 600;
  EXPECT_EQ(SimulatedScene(withoutEvents(options)).events("joined"), 0U);
  options.joins = options.leaves = options.merges = options.splits = 2;
  const SimulatedScene scene(options);
  for (const char* const kind : {"joined", "left", "merged", "split"}) {
    EXPECT_GE(scene.events(kind), 1U) << kind;
    EXPECT_LE(scene.events(kind), 2U) << kind;
  }
  const auto truth = scene.lines("truth.jsonl");
  for (const auto& event : scene.lines("events.jsonl")) {
    const auto& frame = truth[event["frame"].get<std::size_t>() - 1];
    const auto ids = frame["ids"].get<std::vector<int>>();
    const auto place = std::find(ids.begin(), ids.end(), event["group"].get<int>());
    Persons members;
    if (place != ids.end()) {
      members = frame["groups"][static_cast<std::size_t>(place - ids.begin())].get<Persons>();
    }
    const auto persons = event["persons"].get<Persons>();
    const bool areMembers =
        std::includes(members.begin(), members.end(), persons.begin(), persons.end());
    if (event["event"] == "left") {
      EXPECT_FALSE(areMembers) << event;
    } else if (event["event"] == "ended") {
      EXPECT_THAT(members, IsEmpty()) << event;
    } else {
      EXPECT_TRUE(areMembers) << event;
    }
    if (event["event"] == "merged") {
      EXPECT_EQ(std::count(ids.begin(), ids.end(), event["from"].get<int>()), 0) << event;
    }
  }
}

TEST(SceneSimulation, SaysWhereItCannotWrite) {
  SimulationOptions options = shortScene(1);
  options.outputFolder = "/dev/null/scene";
  EXPECT_THROW(simulateScene(options), OutputError);
}

}  // namespace

}  // namespace grouptracker
