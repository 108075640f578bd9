#include "host/run/GroupRun.h"
#include "host/run/ParameterFile.h"
#include "host/run/RunParameters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace grouptracker {

namespace {

using testing::ElementsAre;

QSharedPointer<kelDataActor> actorAt(unsigned id, const cv::Point3f& place, bool hasBox = true) {
  const cv::Rect box(static_cast<int>(10 * id), 20, hasBox ? 10 : 0, hasBox ? 30 : 0);
  auto actor = QSharedPointer<kelDataActor>::create();
  actor->setIdent(id);
  actor->addLinkedPhysicalObject(MobilePointer::create(
      id, QSharedPointer<kelDataPhysicalObject>::create("PERSON", box, BoundingBox3D(), place)));
  return actor;
}

/// Persons 7 and 3 walk side by side, 9 far from them.
InputFrame walking(int number, double step = 0.4) {
  InputFrame frame;
  frame.number = 10 * number;
  frame.time = step * number;
  const auto x = static_cast<float>(*frame.time);
  frame.actors = {actorAt(9, {x, 20, 0}), actorAt(7, {x, 0, 0}), actorAt(3, {x, 0.7F, 0})};
  return frame;
}

std::vector<std::size_t> countsOf(GroupRun& run, int frames, double step = 0.4) {
  std::vector<std::size_t> counts;
  for (int i = 1; i <= frames; ++i) {
    counts.push_back(run.advance(walking(i, step)).size());
  }
  counts.push_back(run.finish().size());
  return counts;
}

GroupRunOptions waiting(std::uint32_t delay, std::optional<double> lookAhead = std::nullopt) {
  GroupRunOptions options;
  options.delay = delay;
  options.lookAhead = lookAhead;
  return options;
}

TEST(GroupRun, MakesAStepOfEveryFrameWithWhatTheInputSays) {
  GroupRun run(waiting(0));
  RunSteps steps;
  for (int i = 1; i <= 5; ++i) {
    for (RunStep& step : run.advance(walking(i))) {
      steps.push_back(std::move(step));
    }
  }
  EXPECT_TRUE(run.finish().empty());
  ASSERT_EQ(steps.size(), 5U);
  const RunStep& last = steps.back();
  EXPECT_EQ(last.source, GroupSource::evidence);
  EXPECT_EQ(last.reportedFrame, 5);
  EXPECT_EQ(last.inputFrame, 50);
  EXPECT_EQ(last.time, 2.0);
  ASSERT_EQ(last.persons.size(), 3U);
  EXPECT_EQ(last.persons[0].id, 3U) << "ascending";
  ASSERT_EQ(last.groups.size(), 1U);
  const RunGroup& group = last.groups[0];
  EXPECT_THAT(group.members, ElementsAre(RunMember{{}, 3, cv::Point2f(2, 0.7F)},
                                         RunMember{{}, 7, cv::Point2f(2, 0)}));
  EXPECT_EQ(group.position, cv::Point3f(2, 0.35F, 0));
  EXPECT_EQ(group.box2D, cv::Rect(30, 20, 50, 30));
  EXPECT_TRUE(group.isVisible);
  EXPECT_EQ(toFrameGroups(last).alone, std::vector<PersonId>{9});
}

TEST(GroupRun, WaitsAsLongAsTheProcessUnlessToldOtherwise) {
  GroupRun likeTheProcess(waiting(2));
  EXPECT_THAT(countsOf(likeTheProcess, 5), ElementsAre(0U, 0U, 1U, 1U, 1U, 2U));
  GroupRun atOnce(waiting(2, 0.0));
  EXPECT_THAT(countsOf(atOnce, 3), ElementsAre(1U, 1U, 1U, 0U));
  GroupRun longer(waiting(0, 1.2));
  EXPECT_THAT(countsOf(longer, 5), ElementsAre(0U, 0U, 0U, 1U, 1U, 3U));
  GroupRun noLongerThanUseful(waiting(1000));
  EXPECT_THAT(countsOf(noLongerThanUseful, 5, 1.0), ElementsAre(0U, 0U, 0U, 0U, 1U, 4U));
}

TEST(GroupRun, DecidesAllOfAClipThatIsShorterThanTheDelay) {
  GroupRun clip(waiting(8));
  EXPECT_THAT(countsOf(clip, 1), ElementsAre(0U, 1U));
  GroupRun nothing(waiting(8));
  EXPECT_TRUE(nothing.finish().empty());
}

TEST(GroupRun, ToleratesWhatInputsHold) {
  GroupRun run(waiting(0));
  InputFrame frame = walking(1);
  auto unseen = QSharedPointer<kelDataActor>::create();
  unseen->setIdent(1);
  constexpr float nowhere = std::numeric_limits<float>::infinity();
  frame.actors << unseen << actorAt(3, {50, 50, 0}) << actorAt(4, {nowhere, 0, 0})
               << actorAt(5, {0, 1.4F, 0}, false);
  RunSteps steps = run.advance(frame);
  ASSERT_EQ(steps.size(), 1U);
  std::vector<std::uint32_t> persons;
  for (const RunPerson& person : steps[0].persons) {
    persons.push_back(person.id);
  }
  EXPECT_THAT(persons, ElementsAre(3U, 4U, 5U, 7U, 9U)) << "each once, who is seen";
  InputFrame empty;
  empty.number = 1000000;
  steps = run.advance(empty);
  ASSERT_EQ(steps.size(), 1U);
  EXPECT_TRUE(steps[0].persons.empty());
  EXPECT_FALSE(steps[0].time);
}

TEST(BuiltInParameters, CountTheSameSecondsAtAnyRate) {
  const auto windowsAt = [](double rate) {
    std::istringstream in(builtInParameters(rate));
    const ParameterFile file = readParameterFile(in, "built in");
    EXPECT_FALSE(file.problem);
    return std::pair(file.number("temporalWinSize:"), file.number("temporalWinForRemoval:"));
  };
  EXPECT_EQ(windowsAt(2.5), std::pair(8.0, 18.0));
  EXPECT_EQ(windowsAt(5), std::pair(16.0, 36.0));
  EXPECT_EQ(windowsAt(25), std::pair(25.0, 56.0)) << "no longer, for the cost";
  EXPECT_EQ(windowsAt(0.01), std::pair(1.0, 6.0));
}

}  // namespace

}  // namespace grouptracker
