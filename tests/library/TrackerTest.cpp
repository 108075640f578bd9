#include "library/Tracker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace grouptracker {

namespace {

using testing::ElementsAre;
using testing::StartsWith;

/// Persons 1 and 2 walk side by side and a metre apart, 3 comes the other way.
std::vector<SeenPerson> walkersAt(int frame) {
  const double way = 0.5 * frame;
  return {{3, {{20.0 - way, 3.0}}}, {1, {{way, 0.0}}}, {2, {{way, 1.0}}}};
}

/// All that a tracker says of 60 frames.
struct Story {
  std::string groups;
  std::string actors;

  void take(const std::vector<TrackerStep>& steps) {
    for (const TrackerStep& step : steps) {
      groups += toLine(step);
    }
  }
  void advance(Tracker& tracker, int frame) {
    const TrackerStep step = tracker.update(walkersAt(frame));
    take(step.frame ? std::vector{step} : std::vector<TrackerStep>());
    actors += tracker.actorsLine();
  }
  bool operator==(const Story&) const = default;
};

constexpr int frames = 60;

Story storyOf(const TrackerSettings& settings) {
  Tracker tracker(settings);
  Story story;
  for (int frame = 1; frame <= frames; ++frame) {
    story.advance(tracker, frame);
  }
  story.take(tracker.finish());
  return story;
}

TrackerSettings settingsWith(const std::vector<std::string>& changes) {
  TrackerSettings settings;
  settings.rate = 2.5;
  settings.parameterChanges = changes;
  settings.runsProcess = true;
  return settings;
}

const TrackerSettings tight = settingsWith({"coherenceThreshold=0.1"});
const TrackerSettings loose = settingsWith({"coherenceThreshold=50", "temporalWinSize=2"});

TEST(Trackers, GiveTheSameInCompanyAsAlone) {
  const Story tightAlone = storyOf(tight);
  const Story looseAlone = storyOf(loose);
  EXPECT_NE(tightAlone.actors, looseAlone.actors);
  Tracker first(tight);
  Tracker second(loose);
  Story firstStory;
  Story secondStory;
  for (int frame = 1; frame <= frames; ++frame) {
    firstStory.advance(first, frame);
    secondStory.advance(second, frame);
  }
  firstStory.take(first.finish());
  secondStory.take(second.finish());
  EXPECT_EQ(firstStory, tightAlone);
  EXPECT_EQ(secondStory, looseAlone);
}

/// A host with people and parameters of its own, drawn from a seed.
Story storyOfHost(unsigned seed) {
  std::mt19937 random(seed);
  const auto below = [&random](unsigned limit) { return random() % limit; };
  TrackerSettings settings = settingsWith({"coherenceThreshold=" + std::to_string(below(50) + 1),
                                           "temporalWinSize=" + std::to_string(below(4) + 2)});
  std::string printed;
  settings.onDiagnostics = [&printed](const std::string& text) { printed += text; };
  Tracker tracker(settings);
  Story story;
  const unsigned people = below(8) + 2;
  for (int frame = 1; frame <= frames; ++frame) {
    std::vector<SeenPerson> seen;
    for (unsigned person = 1; person <= people; ++person) {
      const double side = 0.7 * (person / 2) + 0.1 * below(3);
      seen.push_back({person, {{(person % 3 == 0 ? -0.4 : 0.5) * frame, side}}});
    }
    story.take({tracker.update(seen)});
    story.actors += tracker.actorsLine();
  }
  story.take(tracker.finish());
  story.actors += printed.substr(printed.find('\n'));  // behind the parameter file's name
  return story;
}

// Other hosts with --gtest_shuffle and another --gtest_random_seed.
TEST(Trackers, GiveTheSameInThreads) {
  constexpr unsigned hosts = 3;
  const auto seed = static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()) * hosts;
  std::vector<Story> together(hosts);
  std::vector<std::jthread> threads;
  for (unsigned host = 0; host < hosts; ++host) {
    threads.emplace_back(
        [&story = together[host], seed, host] { story = storyOfHost(seed + host); });
  }
  threads.clear();
  for (unsigned host = 0; host < hosts; ++host) {
    EXPECT_EQ(together[host], storyOfHost(seed + host)) << "host " << host << " of seed " << seed;
  }
}

TEST(Tracker, TellsGroupsAndHandsOverWhatTheProcessPrints) {
  TrackerSettings settings;
  settings.rate = 2.5;
  std::string printed;
  settings.onDiagnostics = [&printed](const std::string& text) { printed += text; };
  testing::internal::CaptureStdout();
  Tracker tracker(settings);
  for (int frame = 1; frame <= frames; ++frame) {
    tracker.update(walkersAt(frame));
  }
  const TrackerStep last = tracker.finish().back();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_THAT(printed, StartsWith("parameter file name: "));
  ASSERT_EQ(last.groups.size(), 1U);
  EXPECT_THAT(last.groups[0].members, ElementsAre(1, 2));
  EXPECT_THAT(last.alone, ElementsAre(3));
  EXPECT_EQ(last.frame, frames);
}

TEST(Tracker, ThrowsAtWrongParametersAndGoesOnAfterAWrongFrame) {
  EXPECT_THROW(Tracker(settingsWith({"temporalWinSize=soon"})), std::invalid_argument);
  Tracker tracker(loose);
  Story story;
  for (int frame = 1; frame <= frames; ++frame) {
    EXPECT_THROW(tracker.update({{1, {{0.0, 0.0}}}, {1, {{1.0, 0.0}}}}), std::invalid_argument);
    story.advance(tracker, frame);
  }
  story.take(tracker.finish());
  EXPECT_EQ(story, storyOf(loose));
  EXPECT_THROW(tracker.update({}), std::logic_error);
}

}  // namespace

}  // namespace grouptracker
