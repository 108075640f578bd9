#include "host/evaluation/EvaluationReport.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace grouptracker {

namespace {

/// A visible group, with the group that it absorbed lately.
struct Found {
  std::uint32_t id = 0;
  PersonGroup persons;
  int merge = -1;
};

std::vector<RunPerson> inView(const std::vector<Person>& persons) {
  std::vector<RunPerson> people;
  for (const Person person : persons) {
    people.push_back({person, {}});
  }
  return people;
}

RunGroup groupOf(const Found& found) {
  RunGroup group;
  group.id = found.id;
  group.isVisible = true;
  group.merge = found.merge;
  for (const Person person : found.persons) {
    group.members.push_back({100 + person, person, {}});
  }
  return group;
}

/// Steps 1, 2, 3 ... with the same persons in view and the groups as given for each step.
RunSteps runOf(const std::vector<Person>& persons, const std::vector<std::vector<Found>>& steps) {
  RunSteps run;
  for (const auto& groups : steps) {
    RunStep& step = run.emplace_back();
    step.inputFrame = std::ssize(run);
    step.persons = inView(persons);
    for (const Found& group : groups) {
      step.groups.push_back(groupOf(group));
    }
  }
  return run;
}

std::vector<std::vector<Found>> repeat(int times, const std::vector<Found>& groups) {
  return std::vector<std::vector<Found>>(static_cast<std::size_t>(times), groups);
}

TEST(Windows, HoldThoseWhoAreInViewAllTheTimeAndConnectThemFromTheWantedSteps) {
  auto steps = repeat(2, {{0, {1, 2}}, {1, {3, 4}}});
  steps.push_back({{0, {1, 2}}, {2, {2, 3}}});
  steps.push_back({{2, {2, 3}}});
  steps.push_back({});  // not a whole window any more
  RunSteps run = runOf({1, 2, 3, 4}, steps);
  run[3].persons = inView({1, 2, 3});
  const auto windows = windowsOf(run, GroupTruth({{1, 2, 3, 4}}), {4, 2});
  ASSERT_EQ(windows.size(), 1U);
  EXPECT_EQ(windows[0].persons, (std::vector<Person>{1, 2, 3}));
  EXPECT_EQ(windows[0].truth, (Grouping{{1, 2, 3}}));
  EXPECT_EQ(windows[0].found, (Grouping{{1, 2, 3}}));
}

TEST(Windows, OfFewerThanTwoPersonsAreLeftOutOfTheMean) {
  RunSteps run = runOf({1, 2}, repeat(4, {{0, {1, 2}}}));
  run[2].persons = run[3].persons = inView({1});
  const auto windows = windowsOf(run, GroupTruth({{1, 2}}), {2, 1});
  EXPECT_EQ(windows.size(), 1U);
  EXPECT_EQ(meanMitre(windows).f1, 1.0);
}

TEST(WholeSequence, ConnectsByThePartOfTheStepsWithBothInView) {
  auto steps = repeat(2, {{0, {1, 2}}});
  steps.resize(10);
  RunSteps run = runOf({1, 2}, steps);
  const GroupTruth truth({{1, 2}});
  EXPECT_TRUE(wholeSequence(run, truth, {5, 2}).found.empty()) << "2 of 10";
  for (std::size_t i = 5; i < run.size(); ++i) {
    run[i].persons = inView({1});
  }
  EXPECT_EQ(wholeSequence(run, truth, {5, 2}).found, (Grouping{{1, 2}})) << "2 of 5";
}

TEST(Time, CountsLateFindingsChangesOfIdentityAndFalseGroups) {
  auto steps = repeat(2, {});                   // the pair is there but not found
  steps.push_back({{4, {1, 2}}, {5, {3, 4}}});  // found; 5 is false
  steps.push_back({});                          // lost
  steps.push_back({{6, {1, 2, 3}}});            // found with another identity
  steps.push_back({{6, {1, 2, 3}}, {7, {1}}});  // somebody left over is no group
  const TimeScores scores =
      scoreTime(runOf({1, 2, 3, 4, 8, 9}, steps), GroupTruth({{1, 2}, {8, 9}, {20, 21}}));
  EXPECT_EQ(scores.trueGroups, 2) << "nobody saw 20 and 21";
  EXPECT_EQ(scores.neverFound, 1);
  EXPECT_EQ(scores.untilFound, 2.0);
  EXPECT_EQ(scores.identityChanges, 1);
  EXPECT_EQ(scores.foundGroups, 3);
  EXPECT_EQ(scores.falseGroups, 1);
}

TEST(Events, CountOnceWithinTheTolerance) {
  GroupTruth truth;
  for (int frame = 1; frame <= 8; ++frame) {
    truth.setAt(frame, frame < 3 ? Grouping{{1, 2}, {3, 4}} : Grouping{{1, 2, 3, 4}});
  }
  const Found merged{0, {1, 2, 3, 4}, 5};  // the record stays for many steps
  auto steps = repeat(4, {{0, {1, 2}}, {5, {3, 4}}});
  steps.resize(8, {merged});
  const RunSteps run = runOf({1, 2, 3, 4}, steps);
  const EventScores near = scoreEvents(run, truth, 2);
  EXPECT_EQ(near.merges.matched, 1);
  EXPECT_EQ(near.merges.found, 1);
  EXPECT_EQ(near.merges.truth, 1);
  EXPECT_EQ(near.splits.truth, 0);
  EXPECT_EQ(scoreEvents(run, truth, 1).merges.matched, 0);
}

TEST(Identities, OfTrueGroupsOutliveTheirMembers) {
  GroupTruth truth;
  truth.setAt(1, {{1, 2, 3}, {4, 5}}, {7, 8});
  truth.setAt(2, {{1, 2}, {3, 4, 5}}, {7, 8});  // 3 changes groups
  truth.setAt(3, {{1, 2}, {4, 5}}, {7, 8});
  truth.setAt(4, {{1, 2, 4, 5}}, {7});
  const RunSteps run = runOf({1, 2, 3, 4, 5}, {{{0, {1, 2, 3}}},
                                               {{0, {1, 2}}, {1, {3, 4, 5}}},
                                               {{2, {1, 2}}, {1, {4, 5}}},
                                               {{2, {1, 2, 4, 5}}}});
  const TimeScores time = scoreTime(run, truth);
  EXPECT_EQ(time.trueGroups, 2);
  EXPECT_EQ(time.identityChanges, 1) << "of the first group, at step 3";
  EXPECT_EQ(time.untilFound, 0.5);
  const EventScores events = scoreEvents(run, truth, 0);
  EXPECT_EQ(events.merges.truth, 1) << "not the one who changed";
  EXPECT_EQ(events.splits.truth, 0);
}

TEST(Truth, PerFrameHoldsOverAWindowForMoreThanHalfOfIt) {
  GroupTruth truth;
  truth.setAt(1, {{1, 2}});
  truth.setAt(2, {{1, 2}, {3, 4}});
  EXPECT_EQ(truth.over({1, 2, 3}), (Grouping{{1, 2}}));
  EXPECT_TRUE(truth.at(7).empty());
}

TEST(Baselines, TellCompanionsFromThoseWhoMeet) {
  RunSteps steps;
  for (int i = 0; i < 4; ++i) {
    const auto at = [](float x, float y) { return Sighting{{x, y}, {}}; };
    const auto way = static_cast<float>(i);
    RunStep& step = steps.emplace_back();
    step.inputFrame = i;
    step.persons = {{1, at(way, 0)}, {2, at(way, 1)}, {3, at(3 - way, 0.5F)}};
  }
  const Baselines scores = scoreBaselines(steps, GroupTruth({{1, 2}}), {4, 1});
  EXPECT_EQ(scores.crudeRule.f1, 1.0);
  EXPECT_NEAR(scores.alone.f1, 0.4, 1e-12);
}

/// Everybody's way over four steps from one place to another; what the rule makes of 1 and 2.
double crudeScore(const std::vector<std::pair<cv::Point2f, cv::Point2f>>& ways) {
  RunSteps steps;
  for (int i = 0; i < 4; ++i) {
    RunStep& step = steps.emplace_back();
    step.inputFrame = i;
    for (const auto& [from, to] : ways) {
      const float part = static_cast<float>(i) / 3.0F;
      const auto person = static_cast<Person>(step.persons.size() + 1);
      step.persons.push_back({person, Sighting{from + (to - from) * part, {}}});
    }
  }
  return scoreBaselines(steps, GroupTruth({{1, 2}}), {4, 1}).crudeRule.f1;
}

TEST(Baselines, TheCrudeRuleEndsAtAMetreAndAHalf) {
  EXPECT_EQ(crudeScore({{{0, 0}, {5, 0}}, {{0, 1.45F}, {5, 1.45F}}}), 1.0);
  EXPECT_EQ(crudeScore({{{0, 0}, {5, 0}}, {{0, 1.55F}, {5, 1.55F}}}), 0.0) << "too far apart";
  EXPECT_EQ(crudeScore({{{0, 0}, {5, 0}}, {{0, 0}, {6.45F, 0}}}), 1.0);
  EXPECT_EQ(crudeScore({{{0, 0}, {5, 0}}, {{0, 0}, {6.55F, 0}}}), 0.0) << "too different ways";
}

TEST(Report, HasTheSameNumbersAsTableAndJson) {
  const RunSteps run = runOf({1, 2, 3}, repeat(15, {{0, {1, 2, 3}}}));
  const EvaluationReport report = evaluate(run, GroupTruth({{1, 2}}), {});
  const auto json = nlohmann::json::parse(jsonOf(report));
  EXPECT_EQ(json["windowedMitre"]["f1"], 0.5);
  EXPECT_EQ(json["correctGroups 2/3"]["f1"], 1.0);
  EXPECT_EQ(json["windows"], 1);
  EXPECT_NE(
      tableOf(report).find("group MITRE, 1 windows                 0.500     0.500     0.500"),
      std::string::npos)
      << tableOf(report);
}

}  // namespace

}  // namespace grouptracker
