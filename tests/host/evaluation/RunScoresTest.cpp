#include "host/evaluation/Assignment.h"
#include "host/evaluation/EvaluationReport.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace grouptracker {

namespace {

/// A group, with the groups out of which it came.
struct Found {
  std::uint32_t id = 0;
  PersonGroup persons;
  std::vector<GroupId> from = {};
};

/// Frames 1, 2, 3 ... a second apart, with the same persons in view and the groups as given for
/// each.
GroupedFrames runOf(const std::vector<Person>& persons,
                    const std::vector<std::vector<Found>>& steps) {
  GroupedFrames run;
  for (const auto& groups : steps) {
    FrameGroups& frame = run.emplace_back();
    frame.frame = std::ssize(run);
    frame.time = static_cast<double>(frame.frame);
    frame.alone = persons;
    for (const Found& group : groups) {
      FoundGroup& found = frame.groups.emplace_back();
      found.id = group.id;
      found.members = group.persons;
      found.from = group.from;
      std::erase_if(frame.alone, [&group](Person person) {
        return std::count(group.persons.begin(), group.persons.end(), person) > 0;
      });
    }
  }
  return run;
}

/// Takes somebody out of view.
void hide(Person person, FrameGroups& frame) {
  std::erase(frame.alone, person);
  for (FoundGroup& group : frame.groups) {
    std::erase(group.members, person);
  }
}

std::vector<std::vector<Found>> repeat(int times, const std::vector<Found>& groups) {
  return std::vector<std::vector<Found>>(static_cast<std::size_t>(times), groups);
}

TEST(Windows, HoldThoseWhoAreInViewAllTheTimeAndConnectThemFromTheWantedSteps) {
  auto steps = repeat(2, {{0, {1, 2}}, {1, {3, 4}}});
  steps.push_back({{0, {1, 2}}, {2, {2, 3}}});
  steps.push_back({{2, {2, 3}}});
  steps.push_back({});  // not a whole window any more
  GroupedFrames run = runOf({1, 2, 3, 4}, steps);
  hide(4, run[3]);
  const auto windows = windowsOf(run, GroupTruth({{1, 2, 3, 4}}), {4, 2});
  ASSERT_EQ(windows.size(), 1U);
  EXPECT_EQ(windows[0].persons, (std::vector<Person>{1, 2, 3}));
  EXPECT_EQ(windows[0].truth, (Grouping{{1, 2, 3}}));
  EXPECT_EQ(windows[0].found, (Grouping{{1, 2, 3}}));
}

TEST(Windows, OfFewerThanTwoPersonsAreLeftOutOfTheMean) {
  GroupedFrames run = runOf({1, 2}, repeat(4, {{0, {1, 2}}}));
  hide(2, run[2]);
  hide(2, run[3]);
  const auto windows = windowsOf(run, GroupTruth({{1, 2}}), {2, 1});
  EXPECT_EQ(windows.size(), 1U);
  EXPECT_EQ(meanMitre(windows).f1, 1.0);
}

TEST(Windows, FromALaterFrameAreThoseOfTheRest) {
  std::vector<std::vector<Found>> steps;
  for (std::uint32_t i = 0; i < 11; ++i) {
    steps.push_back({{1, {1 + i % 2, 4}}, {2, {3, 5 + i % 3}}});
  }
  const GroupedFrames run = runOf({1, 2, 3, 4, 5, 6, 7}, steps);
  GroupTruth truth;
  for (const FrameGroups& frame : run) {
    truth.setAt(frame.frame, {{1, 4}, {2, 3, frame.frame < 6 ? 5U : 6U}});
  }
  const WindowedRun windowed(run);
  for (const std::size_t first : {0U, 2U, 3U, 11U, 12U}) {
    const auto skipped = static_cast<std::ptrdiff_t>(std::min<std::size_t>(first, run.size()));
    const auto expected = windowsOf({run.begin() + skipped, run.end()}, truth, {4, 2});
    const auto windows = windowed.windows(first, truth, {4, 2});
    ASSERT_EQ(windows.size(), expected.size());
    for (std::size_t i = 0; i < windows.size(); ++i) {
      EXPECT_EQ(windows[i].truth, expected[i].truth);
      EXPECT_EQ(windows[i].found, expected[i].found);
    }
  }
}

TEST(WholeSequence, ConnectsByThePartOfTheStepsWithBothInView) {
  auto steps = repeat(2, {{0, {1, 2}}});
  steps.resize(10);
  GroupedFrames run = runOf({1, 2}, steps);
  const GroupTruth truth({{1, 2}});
  EXPECT_TRUE(wholeSequence(run, truth, {5, 2}).found.empty()) << "2 of 10";
  for (std::size_t i = 5; i < run.size(); ++i) {
    hide(2, run[i]);
  }
  EXPECT_EQ(wholeSequence(run, truth, {5, 2}).found, (Grouping{{1, 2}})) << "2 of 5";
}

TEST(Time, CountsLateFindingsChangesOfIdentityAndFalseGroups) {
  auto steps = repeat(2, {});                   // the pair is there but not found
  steps.push_back({{4, {1, 2}}, {5, {3, 4}}});  // found; 5 is false
  steps.push_back({});                          // lost
  steps.push_back({{6, {1, 2, 3}}});            // found with another identity
  const TimeScores scores =
      scoreTime(runOf({1, 2, 3, 4, 8, 9}, steps), GroupTruth({{1, 2}, {8, 9}, {20, 21}}));
  EXPECT_EQ(scores.trueGroups, 2) << "nobody saw 20 and 21";
  EXPECT_EQ(scores.neverFound, 1);
  EXPECT_EQ(scores.untilFound, 2.0);
  EXPECT_EQ(scores.identityChanges, 1);
  EXPECT_EQ(scores.foundGroups, 3);
  EXPECT_EQ(scores.falseGroups, 1);
}

/// Two pairs become one group at frame 3.
GroupTruth mergeAtThree() {
  GroupTruth truth;
  for (int frame = 1; frame <= 8; ++frame) {
    truth.setAt(frame, frame < 3 ? Grouping{{1, 2}, {3, 4}} : Grouping{{1, 2, 3, 4}});
  }
  return truth;
}

TEST(Events, CountWithinTheToleranceAndTellTheirDelay) {
  auto steps = repeat(4, {{0, {1, 2}}, {5, {3, 4}}});
  steps.push_back({{0, {1, 2, 3, 4}, {0, 5}}});
  steps.resize(8, {{0, {1, 2, 3, 4}}});
  const GroupedFrames run = runOf({1, 2, 3, 4}, steps);
  const EventScores near = scoreEvents(run, mergeAtThree(), 2.0);
  EXPECT_EQ(near.merges.counts.matched, 1);
  EXPECT_EQ(near.merges.counts.found, 1);
  EXPECT_EQ(near.merges.counts.truth, 1);
  EXPECT_EQ(near.merges.delay, 2.0);
  EXPECT_EQ(near.splits.counts.truth, 0);
  EXPECT_EQ(scoreEvents(run, mergeAtThree(), 1.9).merges.counts.matched, 0);
}

TEST(Events, BetweenAnnotatedFramesHappenedAnyTimeBetweenThem) {
  GroupTruth truth;
  truth.setAt(1, {{1, 2, 3, 4}});
  truth.setAt(7, {{1, 2}, {3, 4}});
  std::vector<std::vector<Found>> steps = repeat(5, {{4, {1, 2, 3, 4}}});
  steps.push_back({{4, {1, 2}}, {6, {3, 4}, {4}}});
  steps.resize(8, {{4, {1, 2}}, {6, {3, 4}}});
  const EventScores scores = scoreEvents(runOf({1, 2, 3, 4}, steps), truth, 0.0);
  EXPECT_EQ(scores.splits.counts.matched, 1);
  EXPECT_EQ(scores.splits.delay, 0.0);
  EXPECT_EQ(scores.merges.counts.truth, 0);
}

TEST(Memberships, AreGivenToOneFoundGroupEachWhereMostAgree) {
  // Greedily 1 would have found group 5 with three frames, which leaves the other none.
  const GroupedFrames run = runOf({1, 2, 3, 4}, {{{5, {1, 2}}, {6, {3, 4}}},
                                                 {{5, {1, 2}}, {6, {3, 4}}},
                                                 {{5, {1, 2, 3, 4}}},
                                                 {{7, {1, 2}}, {5, {3, 4}}},
                                                 {{7, {1, 2}}, {5, {3, 4}}},
                                                 {{7, {1, 2}}}});
  const Counts counts = identityMatches(run, GroupTruth({{1, 2}, {3, 4}}));
  EXPECT_EQ(counts.matched, 12) << "1 and 2 in 5 or 7 three times, 3 and 4 in 5 three times";
  EXPECT_EQ(counts.found, 22);
  EXPECT_EQ(counts.truth, 24);
}

TEST(Memberships, FlickerWhenSomebodyComesBackWithinAMoment) {
  const std::vector<Found> both{{5, {1, 2}}};
  const Flicker flicker = flickerOf(runOf({1, 2, 3}, {both, {}, both, both, {}, {}, both}));
  EXPECT_EQ(flicker.joins, 6);
  EXPECT_EQ(flicker.back, 2) << "after two seconds, not after three";
}

TEST(Assignment, FindsTheLargestSum) {
  Matches matches(3, 2);
  matches.set(0, 0, 9);
  matches.set(0, 1, 8);
  matches.set(1, 0, 7);
  matches.set(2, 1, 1);
  EXPECT_EQ(largestSum(matches), 15);
  EXPECT_EQ(largestSum(Matches(0, 4)), 0);
}

TEST(Annotation, OfSomeFramesIsAllThatCounts) {
  GroupTruth truth;
  truth.setAt(2, {{1, 2}});
  truth.setAt(4, {});
  auto steps = repeat(3, {{1, {1, 2}}, {2, {3, 4}}});
  steps.push_back({});
  const EvaluationReport report = evaluate(runOf({1, 2, 3, 4}, steps), truth, {});
  EXPECT_EQ(report.steps, 4U);
  EXPECT_EQ(report.annotated, 2U);
  EXPECT_EQ(report.frames.correctGroups[1].found, 2);
  EXPECT_EQ(report.frames.correctGroups[1].matched, 1);
  EXPECT_EQ(report.identities.truth, 2);
  EXPECT_EQ(report.flicker.joins, 4) << "of all frames";
  EXPECT_NE(tableOf(report).find("2 of 4 frames are annotated"), std::string::npos);
}

TEST(Annotation, OfOtherPeopleIsNoticed) {
  const GroupedFrames run = runOf({1, 2, 3}, repeat(2, {{1, {1, 2}}}));
  EXPECT_TRUE(whyAboutOthers(GroupTruth({{3, 40}, {50, 60}}), run));
  EXPECT_FALSE(whyAboutOthers(GroupTruth({{3, 40}, {2, 3}}), run));
  EXPECT_FALSE(whyAboutOthers(GroupTruth(), run)) << "everybody may be alone";
  GroupTruth later;
  later.setAt(8, {{1, 2}});
  EXPECT_TRUE(whyAboutOthers(later, run));
}

TEST(Annotation, OfPeopleWithTheSameIdsIsDoubted) {
  GroupedFrames run;
  for (int frame = 0; frame < 20; ++frame) {  // 0 to 4 walk through, then 5 to 9
    run.push_back({.frame = frame, .time = {}, .groups = {}, .alone = {0, 1, 2, 3, 4}});
    for (PersonId& person : run.back().alone) {
      person += frame < 10 ? 0 : 5;
    }
  }
  EXPECT_FALSE(doubtAboutPeople(GroupTruth({{0, 1, 2, 3, 4}, {5, 6, 7}}), run));
  EXPECT_EQ(doubtAboutPeople(GroupTruth({{0, 1, 2, 5, 6, 7}}), run).value_or("").substr(0, 54),
            "its companions are in view together for 40 % of their ");
  EXPECT_FALSE(doubtAboutPeople(GroupTruth({{0, 5}}), run)) << "one pair says little";
}

TEST(Identities, OfTrueGroupsOutliveTheirMembers) {
  GroupTruth truth;
  truth.setAt(1, {{1, 2, 3}, {4, 5}}, {7, 8});
  truth.setAt(2, {{1, 2}, {3, 4, 5}}, {7, 8});  // 3 changes groups
  truth.setAt(3, {{1, 2}, {4, 5}}, {7, 8});
  truth.setAt(4, {{1, 2, 4, 5}}, {7});
  const GroupedFrames run = runOf({1, 2, 3, 4, 5}, {{{0, {1, 2, 3}}},
                                                    {{0, {1, 2}}, {1, {3, 4, 5}}},
                                                    {{2, {1, 2}}, {1, {4, 5}}},
                                                    {{2, {1, 2, 4, 5}}}});
  const TimeScores time = scoreTime(run, truth);
  EXPECT_EQ(time.trueGroups, 2);
  EXPECT_EQ(time.identityChanges, 1) << "of the first group, at step 3";
  EXPECT_EQ(time.untilFound, 0.5);
  const EventScores events = scoreEvents(run, truth, 0.0);
  EXPECT_EQ(events.merges.counts.truth, 1) << "not the one who changed";
  EXPECT_EQ(events.splits.counts.truth, 0);
}

TEST(Truth, PerFrameHoldsOverAWindowForMoreThanHalfOfIt) {
  GroupTruth truth;
  truth.setAt(1, {{1, 2}});
  truth.setAt(2, {{1, 2}, {3, 4}});
  EXPECT_EQ(truth.over({1, 2, 3}), (Grouping{{1, 2}}));
  EXPECT_TRUE(truth.at(7).empty());
}

TEST(Baselines, TellCompanionsFromThoseWhoMeet) {
  std::vector<PeopleFrame> frames;
  for (int i = 0; i < 4; ++i) {
    const double way = i;
    frames.push_back({i, std::nullopt, {{1, {way, 0}}, {2, {way, 1}}, {3, {3 - way, 0.5}}}});
  }
  const Baselines scores = scoreBaselines(frames, GroupTruth({{1, 2}}), {4, 1});
  EXPECT_EQ(scores.crudeRule.f1, 1.0);
  EXPECT_NEAR(scores.alone.f1, 0.4, 1e-12);
}

/// Everybody's way over four steps from one place to another; what the rule makes of 1 and 2.
double crudeScore(const std::vector<std::pair<cv::Point2d, cv::Point2d>>& ways) {
  std::vector<PeopleFrame> frames;
  for (int i = 0; i < 4; ++i) {
    PeopleFrame& frame = frames.emplace_back();
    frame.number = i;
    for (const auto& [from, to] : ways) {
      const auto person = static_cast<PersonId>(frame.people.size() + 1);
      frame.people.push_back({person, from + (to - from) * (i / 3.0)});
    }
  }
  return scoreBaselines(frames, GroupTruth({{1, 2}}), {4, 1}).crudeRule.f1;
}

TEST(Baselines, TheCrudeRuleEndsAtAMetreAndAHalf) {
  EXPECT_EQ(crudeScore({{{0, 0}, {5, 0}}, {{0, 1.45}, {5, 1.45}}}), 1.0);
  EXPECT_EQ(crudeScore({{{0, 0}, {5, 0}}, {{0, 1.55}, {5, 1.55}}}), 0.0) << "too far apart";
  EXPECT_EQ(crudeScore({{{0, 0}, {5, 0}}, {{0, 0}, {6.45, 0}}}), 1.0);
  EXPECT_EQ(crudeScore({{{0, 0}, {5, 0}}, {{0, 0}, {6.55, 0}}}), 0.0) << "too different ways";
}

TEST(Report, HasTheSameNumbersAsTableAndJson) {
  const GroupedFrames run = runOf({1, 2, 3}, repeat(15, {{0, {1, 2, 3}}}));
  const EvaluationReport report = evaluate(run, GroupTruth({{1, 2}}), {});
  const auto json = nlohmann::json::parse(jsonOf(report));
  EXPECT_EQ(json["windowedMitre"]["f1"], 0.5);
  EXPECT_EQ(json["correctGroups 2/3"]["f1"], 1.0);
  EXPECT_EQ(json["windows"], 1);
  EXPECT_NE(
      tableOf(report).find("group MITRE, 1 windows                 0.500     0.500     0.500"),
      std::string::npos)
      << tableOf(report);
  const EvaluationReport other = evaluate(run, GroupTruth({{1, 2, 3}}), {});
  EXPECT_NE(comparisonOf(report, other)
                .find("group MITRE, 1 windows                 0.500     1.000    -0.500"),
            std::string::npos)
      << comparisonOf(report, other);
}

}  // namespace

}  // namespace grouptracker
