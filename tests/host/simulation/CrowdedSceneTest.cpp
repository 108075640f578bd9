#include "host/simulation/TrackerFaults.h"
#include "tests/host/simulation/SimulatedScene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace grouptracker {

namespace {

using nlohmann::json;
using Id = unsigned int;
using Persons = std::set<Id>;
using Places = std::map<Id, cv::Point2d>;
using testing::IsEmpty;

SimulationOptions emptyScene(std::uint64_t seed, double seconds, double rate) {
  SimulationOptions options;
  options.seed = seed;
  options.people = 0;
  options.seconds = seconds;
  options.rate = rate;
  options.joins = options.leaves = options.merges = options.splits = 0;
  return options;
}

SimulationOptions crowdedScene(std::uint64_t seed, double seconds, double rate) {
  SimulationOptions options = emptyScene(seed, seconds, rate);
  options.people = 12;
  options.circles = {2, 3, 5, 4};
  options.waiting = 5;
  options.queue = 6;
  options.streams = 10;
  options.joins = options.leaves = options.merges = options.splits = 3;
  return options;
}

Places placesIn(const json& frame) {
  Places places;
  for (std::size_t i = 0; i < frame["actors"].size(); ++i) {
    const auto& position = frame["mobiles"][i]["position"];
    places[frame["actors"][i]["id"]] = {position[0].get<double>(), position[1].get<double>()};
  }
  return places;
}

double distance(const cv::Point2d& a, const cv::Point2d& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

/// The numbers of groups by members, everybody under the name that `rename` gives.
std::map<int, Persons> groupsIn(const json& frame, const std::map<Id, Id>& rename = {}) {
  std::map<int, Persons> groups;
  for (std::size_t i = 0; i < frame["ids"].size(); ++i) {
    for (const Id person : frame["groups"][i]) {
      const auto other = rename.find(person);
      groups[frame["ids"][i]].insert(other == rename.end() ? person : other->second);
    }
  }
  return groups;
}

TEST(CrowdedScene, IsTheSameWorldAtAnyRate) {
  SimulationOptions options = crowdedScene(3, 8.0, 25.0);
  options.jitter = 0.05;
  options.gaps = 4.0;
  options.renamed = 0.5;
  options.switches = 20.0;
  const SimulatedScene fine(options);
  const auto fineFrames = fine.lines("scene.jsonl");
  const auto fineTruth = fine.lines("truth.jsonl");
  for (const double rate : {2.5, 5.0, 10.0}) {
    options.rate = rate;
    const SimulatedScene coarse(options);
    const auto frames = coarse.lines("scene.jsonl");
    const auto truth = coarse.lines("truth.jsonl");
    ASSERT_EQ(frames.size(), static_cast<std::size_t>(8.0 * rate));
    for (std::size_t i = 0; i < frames.size(); ++i) {
      const double other = static_cast<double>(i) / rate * 25.0;
      if (std::abs(other - std::round(other)) > 1e-9) {
        continue;
      }
      const auto j = static_cast<std::size_t>(std::lround(other));
      EXPECT_NEAR(frames[i]["time"].get<double>(), fineFrames[j]["time"].get<double>(), 1e-9);
      EXPECT_EQ(placesIn(frames[i]), placesIn(fineFrames[j])) << rate << ", frame " << i + 1;
      EXPECT_EQ(groupsIn(truth[i]), groupsIn(fineTruth[j])) << rate << ", frame " << i + 1;
    }
  }
}

TEST(CrowdedScene, OnlyPeopleWhoWereSeenForAWhileMergeAndSplit) {
  constexpr double rate = 2.5;
  SimulationOptions options = emptyScene(101, 60.0, rate);
  options.people = 30;
  options.merges = options.splits = 3;
  const SimulatedScene scene(options);
  std::map<Id, int> firstSeen;
  for (const json& frame : scene.lines("truth.jsonl")) {
    for (const Id person : frame["persons"]) {
      firstSeen.try_emplace(person, frame["frame"]);
    }
  }
  int changes = 0;
  for (const json& event : scene.lines("events.jsonl")) {
    const bool isChange = event["event"] == "merged" || event["event"] == "split";
    for (const Id person : isChange ? event["persons"].get<Persons>() : Persons()) {
      EXPECT_GE(event["frame"].get<int>() - firstSeen.at(person), 4.0 * rate) << event;
      ++changes;
    }
  }
  EXPECT_GT(changes, 0);
}

TEST(CrowdedScene, PeopleInACircleKeepTalkingDistance) {
  constexpr double slow = 0.3;  // m/s
  SimulationOptions options = emptyScene(5, 40.0, 2.5);
  options.circles = {2, 3, 4, 5, 6};
  const SimulatedScene scene(options);
  const auto frames = scene.lines("scene.jsonl");
  const auto truth = scene.lines("truth.jsonl");
  int looks = 0;
  for (std::size_t i = 1; i < frames.size(); ++i) {
    const Places before = placesIn(frames[i - 1]);
    const Places now = placesIn(frames[i]);
    for (const auto& [group, members] : groupsIn(truth[i])) {
      const bool stands = std::all_of(members.begin(), members.end(), [&](Id person) {
        return before.contains(person) &&
               distance(before.at(person), now.at(person)) * options.rate < slow;
      });
      for (const Id person : stands ? members : Persons()) {
        double nearest = 1e9;
        for (const Id other : members) {
          nearest = other == person ? nearest
                                    : std::min(nearest, distance(now.at(person), now.at(other)));
        }
        EXPECT_GE(nearest, 0.6) << "frame " << i + 1 << ", person " << person;
        EXPECT_LE(nearest, 1.5) << "frame " << i + 1 << ", person " << person;
        ++looks;
      }
    }
  }
  EXPECT_GT(looks, 500);
}

TEST(CrowdedScene, WhoWaitsOrQueuesIsAlone) {
  SimulationOptions options = emptyScene(6, 20.0, 2.5);
  options.waiting = 6;
  options.queue = 8;
  const SimulatedScene scene(options);
  std::size_t most = 0;
  for (const auto& frame : scene.lines("truth.jsonl")) {
    EXPECT_THAT(frame["groups"], IsEmpty());
    most = std::max(most, frame["persons"].size());
  }
  EXPECT_GE(most, 7U);
}

TEST(CrowdedScene, MergedGroupsStayMergedAndSplitOnesApart) {
  std::size_t merges = 0;
  std::size_t splits = 0;
  for (const std::uint64_t seed : {1, 2}) {
    const SimulatedScene scene(crowdedScene(seed, 50.0, 2.5));
    const auto truth = scene.lines("truth.jsonl");
    const auto groups = scene.lines("true_groups.jsonl");
    for (const auto& event : scene.lines("events.jsonl")) {
      const auto begin = event["frame"].get<std::size_t>() - 1;
      const bool isMerge = event["event"] == "merged";
      if (!isMerge && event["event"] != "split") {
        continue;
      }
      (isMerge ? merges : splits) += 1;
      const int from = event["from"];
      const int group = event["group"];
      for (const auto& listed : groups[begin]["groups"]) {
        if (listed["id"] == group) {
          EXPECT_EQ(listed["from"],
                    isMerge ? json({std::min(from, group), std::max(from, group)}) : json({from}));
        }
      }
      for (std::size_t i = begin; i < truth.size(); ++i) {
        auto found = groupsIn(truth[i]);
        EXPECT_FALSE(isMerge && found.contains(from)) << event << " frame " << i + 1;
      }
      // For ten seconds nobody of them changes again.
      for (std::size_t i = begin; i < std::min(begin + 25, truth.size()); ++i) {
        for (const auto& [number, members] : groupsIn(truth[i])) {
          for (const Id person : event["persons"]) {
            EXPECT_TRUE(number == group || !members.contains(person)) << event << ' ' << i + 1;
          }
        }
      }
    }
  }
  EXPECT_GE(merges, 3U);
  EXPECT_GE(splits, 3U);
}

TEST(CrowdedScene, ASwitchExchangesIdsAndTheTruthGoesAlong) {
  SimulationOptions options = crowdedScene(7, 12.0, 5.0);
  const SimulatedScene clean(options);
  options.switches = 40.0;
  const SimulatedScene faulty(options);
  const auto frames = faulty.lines("scene.jsonl");
  const auto truth = faulty.lines("truth.jsonl");
  const auto cleanFrames = clean.lines("scene.jsonl");
  const auto cleanTruth = clean.lines("truth.jsonl");
  auto events = faulty.lines("events.jsonl");
  std::erase_if(events, [](const json& event) { return event["event"] != "switched"; });
  EXPECT_GE(events.size(), 4U);
  std::map<Id, Id> shown;  // the id under which the tracker has a person, by person
  for (Id person = 1; person < 200; ++person) {
    shown[person] = person;
  }
  auto event = events.begin();
  for (std::size_t i = 0; i < frames.size(); ++i) {
    for (; event != events.end() && (*event)["frame"] == i + 1; ++event) {
      const auto ids = (*event)["persons"].get<std::vector<Id>>();
      for (auto& [person, id] : shown) {
        id = id == ids[0] ? ids[1] : (id == ids[1] ? ids[0] : id);
      }
    }
    Places expected;
    for (const auto& [person, place] : placesIn(cleanFrames[i])) {
      expected[shown[person]] = place;
    }
    EXPECT_EQ(placesIn(frames[i]), expected) << "frame " << i + 1;
    EXPECT_EQ(groupsIn(truth[i]), groupsIn(cleanTruth[i], shown)) << "frame " << i + 1;
  }
}

TEST(CrowdedScene, TheLostAreMissedForAWhileAndSomeComeBackUnderNewIds) {
  SimulationOptions options = crowdedScene(8, 12.0, 5.0);
  const SimulatedScene clean(options);
  options.gaps = 10.0;
  options.renamed = 0.5;
  options.jitter = 0.1;
  const SimulatedScene faulty(options);
  EXPECT_LT(faulty.mobiles(), 0.95 * static_cast<double>(clean.mobiles()));
  EXPECT_GT(faulty.mobiles(), 0.6 * static_cast<double>(clean.mobiles()));
  const auto truth = faulty.lines("truth.jsonl");
  const auto cleanTruth = clean.lines("truth.jsonl");
  Persons newIds;
  for (std::size_t i = 0; i < truth.size(); ++i) {
    EXPECT_EQ(truth[i]["persons"].size(), cleanTruth[i]["persons"].size());
    EXPECT_EQ(truth[i]["ids"], cleanTruth[i]["ids"]);
    for (const Id person : truth[i]["persons"]) {
      if (person >= TrackerFaults::firstNewId) {
        newIds.insert(person);
      }
    }
  }
  EXPECT_GE(newIds.size(), 5U);
  EXPECT_EQ(newIds.size(), faulty.events("renamed"));
}

}  // namespace

}  // namespace grouptracker
