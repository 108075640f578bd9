#include "tests/host/grouping/PathScene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace grouptracker {

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

/// Two who walk side by side all along.
PathScene pairWalking() {
  PathScene scene;
  scene.person(1, {{0, -12, 0}, {20, 12, 0}}).person(2, {{0, -12, 0.8}, {20, 12, 0.8}});
  return scene;
}

/// Two pairs that come from afar, join and walk on together.
PathScene pairsThatMeet() {
  PathScene scene;
  scene.person(1, {{0, 0, 0}, {15, 16, 8}, {60, 70, 8}})
      .person(2, {{0, 0, 0.7}, {15, 16, 8.7}, {60, 70, 8.7}})
      .person(3, {{0, 0, 18}, {15, 16, 10.1}, {60, 70, 10.1}})
      .person(4, {{0, 0, 18.7}, {15, 16, 9.4}, {60, 70, 9.4}});
  return scene;
}

TEST(GroupFinder, PairThatWalksTogetherIsOneGroupAllAlong) {
  EXPECT_THAT(changesIn(groupsOf(pairWalking().at(2.5))),
              ElementsAre(MatchesRegex("0\\.[048] s: 1=\\{1,2\\}")));
}

TEST(GroupFinder, PasserByDoesNotLockInTheOneWhoStands) {
  PathScene scene;
  scene.person(1, {{0, 0, 0}, {60, 0, 0}});
  for (PersonId passer = 2; passer < 8; ++passer) {
    const double start = 3.0 + 8.0 * (passer - 2);
    scene.person(passer, {{start, -7, 0.6}, {start + 10, 7, 0.6}});
  }
  for (const double lookAhead : {3.2, 0.0}) {
    EXPECT_THAT(changesIn(groupsOf(scene.at(2.5), lookAhead)), IsEmpty()) << lookAhead;
  }
}

TEST(GroupFinder, StrangersWhoCrossAreNeverAGroup) {
  PathScene scene;
  scene.person(1, {{0, -8, 0}, {12, 8, 0}}).person(2, {{0, 8, 0.5}, {12, -8, 0.5}});
  scene.person(3, {{0, 0, -8}, {12, 0, 8}});
  EXPECT_THAT(changesIn(groupsOf(scene.at(10))), IsEmpty());
}

TEST(GroupFinder, TwoPairsThatMeetForGoodMergeOnce) {
  const auto changes = changesIn(groupsOf(pairsThatMeet().at(2.5)));
  EXPECT_THAT(changes.back(), MatchesRegex("1[456]\\.. s: 1=\\{1,2,3,4\\}<1<2"));
  EXPECT_EQ(std::count_if(
                changes.begin(), changes.end(),
                [](const std::string& change) { return change.find('<') != std::string::npos; }),
            1);
}

TEST(GroupFinder, PairsThatOnlyPassOrStandSideBySideStayTwo) {
  PathScene passing;
  passing.person(1, {{0, -12, 0}, {24, 12, 0}}).person(2, {{0, -12, 0.7}, {24, 12, 0.7}});
  passing.person(3, {{0, 12, 1.6}, {24, -12, 1.6}}).person(4, {{0, 12, 2.3}, {24, -12, 2.3}});
  EXPECT_THAT(changesIn(groupsOf(passing.at(5))).back(), EndsWith("1={1,2} 2={3,4}"));
  PathScene overtaking;
  overtaking.person(1, {{0, -12, 0}, {24, 8, 0}}).person(2, {{0, -12, 0.7}, {24, 8, 0.7}});
  overtaking.person(3, {{0, -18, 1.6}, {24, 16, 1.6}}).person(4, {{0, -18, 2.3}, {24, 16, 2.3}});
  EXPECT_THAT(changesIn(groupsOf(overtaking.at(5))).back(), EndsWith("1={1,2} 2={3,4}"));
}

TEST(GroupFinder, SplitIsToldWhenItShowsAndNotWhenTheLookAheadKnows) {
  PathScene scene;
  scene.person(1, {{0, -15, 0}, {15, 0, 0}, {25, 10, -7}});
  scene.person(2, {{0, -15, 0.7}, {15, 0, 0.7}, {25, 10, -6.3}});
  scene.person(3, {{0, -15, 1.4}, {15, 0, 1.4}, {25, 10, 8.4}});
  scene.person(4, {{0, -15, 2.1}, {15, 0, 2.1}, {25, 10, 9.1}});
  const auto changes = changesIn(groupsOf(scene.at(5)));
  EXPECT_THAT(changes.back(), MatchesRegex("1[67]\\.. s: 1=\\{(1,2|3,4)\\} 2=\\{(1,2|3,4)\\}<1"));
}

TEST(GroupFinder, PartAfterAMergeGetsANewId) {
  PathScene scene;
  const auto come = [&scene](PersonId id, double y, double far) {
    scene.person(id, {{0, 0, far}, {15, 16, y}, {45, 50, y}, {65, 70, far}, {75, 82, far}});
  };
  come(1, 8.0, 0.0);
  come(2, 8.7, 0.7);
  come(3, 10.1, 18.7);
  come(4, 9.4, 18.0);
  const auto lines = groupsOf(scene.at(5));
  EXPECT_EQ(faultIn(lines, scene.at(5)), "");
  EXPECT_THAT(changesIn(lines).back(), MatchesRegex(".* s: 1=\\{(1,2|3,4)\\} 3=\\{(1,2|3,4)\\}<1"));
}

TEST(GroupFinder, GapOfASecondKeepsTheId) {
  PathScene scene = pairWalking();
  scene.hide(2, 9.0, 10.0);
  const auto changes = changesIn(groupsOf(scene.at(5)));
  EXPECT_THAT(changes, ElementsAre(StartsWith("0."), "9.0 s:", "10.0 s: 1={1,2}"));
}

TEST(GroupFinder, TakesAFriendLostForTenSecondsBackIntoTheGroup) {
  PathScene scene = pairWalking();
  scene.hide(2, 6.0, 16.0);
  const auto changes = changesIn(groupsOf(scene.at(5)));
  ASSERT_EQ(changes.size(), 3U);
  EXPECT_THAT(changes.back(), MatchesRegex("1[67]\\.. s: 1=\\{1,2\\}"));
}

TEST(GroupFinder, WithoutLookAheadDecidesEachFrameAtOnce) {
  GroupFinder finder(EvidenceModel::builtIn(), 0.0);
  for (const PeopleFrame& frame : pairWalking().at(25)) {
    const auto lines = finder.next(frame);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines.front().frame, frame.number);
  }
  EXPECT_THAT(finder.finish(), IsEmpty());
}

TEST(GroupFinder, GoesOnDecidingWhenTheClockStandsStillOrFalls) {
  const auto frames = pairWalking().at(25);
  for (const double step : {0.0, -0.04, -100.0}) {
    GroupFinder finder(EvidenceModel::builtIn(), 1.0);
    std::size_t decided = 0;
    for (PeopleFrame frame : frames) {
      const auto behind = static_cast<double>(frame.number - 20);
      frame.time = behind <= 0.0 ? *frame.time : *frames[19].time + step * behind;
      decided += finder.next(frame).size();
      EXPECT_LE(static_cast<std::size_t>(frame.number), decided + 35) << "a second and a tick";
    }
  }
}

TEST(GroupFinder, DecidesOnceTheLookAheadIsKnownAndTheRestAtTheEnd) {
  GroupFinder finder(EvidenceModel::builtIn(), 3.2);
  std::vector<std::size_t> counts;
  for (const PeopleFrame& frame : pairWalking().at(2.5)) {
    counts.push_back(finder.next(frame).size());
  }
  EXPECT_EQ(counts[7], 0U);
  EXPECT_EQ(counts[8], 1U);
  EXPECT_EQ(counts.back(), 1U);
  EXPECT_EQ(finder.finish().size(), 8U);
}

TEST(GroupFinder, GoesOnWhenTheClockOfTheInputIsSetBack) {
  GroupFinder finder(EvidenceModel::builtIn(), 1.0);
  std::size_t decided = 0;
  std::vector<FrameGroups> last;
  for (const double begin : {5000.0, 100.0, 100.0}) {
    for (PeopleFrame frame : pairWalking().at(10)) {
      frame.time = begin + *frame.time;
      const auto lines = finder.next(frame);
      decided += lines.size();
      last = lines.empty() ? last : lines;
    }
  }
  const std::size_t frames = 3 * pairWalking().at(10).size();
  EXPECT_EQ(decided + finder.finish().size(), frames);
  EXPECT_GE(decided, frames - 11) << "nothing waits for a moment that has been";
  ASSERT_FALSE(last.empty());
  EXPECT_EQ(last.back().groups.size(), 1U);
}

TEST(GroupFinder, GroupsDoNotDependOnTheFrameRate) {
  const auto sparse = groupsOf(pairsThatMeet().at(2.5));
  for (const int factor : {2, 4, 10}) {
    const auto dense = groupsOf(pairsThatMeet().at(2.5 * factor));
    std::size_t alike = 0;
    for (std::size_t i = 0; i < sparse.size(); ++i) {
      alike += sparse[i].alone == dense[i * static_cast<std::size_t>(factor)].alone &&
                       sparse[i].groups.size() ==
                           dense[i * static_cast<std::size_t>(factor)].groups.size()
                   ? 1
                   : 0;
    }
    EXPECT_GT(static_cast<double>(alike), 0.97 * static_cast<double>(sparse.size())) << factor;
  }
}

TEST(GroupFinder, FramesWithoutTimesAreTakenToBeTwoAndAHalfASecond) {
  std::vector<PeopleFrame> frames = pairWalking().at(2.5);
  auto timed = groupsOf(frames);
  for (PeopleFrame& frame : frames) {
    frame.time.reset();
  }
  auto untimed = groupsOf(frames);
  for (auto* lines : {&timed, &untimed}) {
    for (FrameGroups& line : *lines) {
      line.time.reset();
      for (FoundGroup& group : line.groups) {
        group.confidence = std::round(1e6 * group.confidence);
      }
    }
  }
  EXPECT_EQ(untimed, timed);
}

/// Walkers without plan, who come and go, in a room that is too small for them.
std::vector<PeopleFrame> crowd(unsigned seed) {
  std::mt19937 random(seed);
  const auto number = [&random](double from, double to) {
    return from + (to - from) * static_cast<double>(random()) / 4294967295.0;
  };
  PathScene scene;
  for (PersonId id = 1; id <= 24; ++id) {
    std::vector<Stop> path{{number(0, 60), number(-4, 4), number(-4, 4)}};
    for (int stop = 0; stop < 4; ++stop) {
      const Stop& last = path.back();
      path.push_back({last.time + number(1, 8), std::clamp(last.x + number(-4, 4), -4.0, 4.0),
                      std::clamp(last.y + number(-4, 4), -4.0, 4.0)});
    }
    scene.person(id, path);
    const double hidden = path.front().time + number(0, 10);
    scene.hide(id, hidden, hidden + number(0, 4));
  }
  return scene.at(5);
}

TEST(GroupFinder, EverybodyIsInOneGroupOrAloneAndIdsAreNeverUsedAgain) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    const auto frames = crowd(seed);
    const auto lines = groupsOf(frames);
    EXPECT_EQ(faultIn(lines, frames), "") << seed;
    std::set<GroupId> absorbed;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      for (const FoundGroup& group : lines[i].groups) {
        EXPECT_FALSE(absorbed.contains(group.id)) << "frame " << lines[i].frame;
        for (const GroupId source : group.from) {
          const bool goesOn =
              std::any_of(lines[i].groups.begin(), lines[i].groups.end(),
                          [source](const FoundGroup& other) { return other.id == source; });
          if (!goesOn) {
            absorbed.insert(source);
          }
        }
      }
    }
  }
}

TEST(GroupFinder, EmptyAndPeoplelessInputsGiveOneEmptyLineAFrame) {
  EXPECT_THAT(groupsOf({}), IsEmpty());
  const std::vector<PeopleFrame> nobody{{5, 0.0, {}}, {6, 9.0, {}}, {7, 9.1, {{3, {1.0, 2.0}}}}};
  EXPECT_THAT(groupsOf(nobody),
              ElementsAre(FrameGroups{5, 0.0, {}, {}}, FrameGroups{6, 9.0, {}, {}},
                          FrameGroups{7, 9.1, {}, {3}}));
}

}  // namespace

}  // namespace grouptracker
