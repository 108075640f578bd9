#include "host/explain/PairStory.h"
#include "host/explain/PairWords.h"
#include "tests/host/grouping/PathScene.h"

#include <gmock/gmock.h>

namespace grouptracker {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// What is told of two persons of a scene.
std::string storyOf(const PathScene& scene, PersonId a, PersonId b) {
  GroupFinder finder(EvidenceModel::builtIn(), 3.2);
  PairStory story(a, b, EvidenceModel::builtIn());
  for (const PeopleFrame& frame : scene.at(2.5)) {
    story.watch(frame, finder);
  }
  story.finish(finder);
  return story.text();
}

/// 1 and 2 walk together, 3 follows them by some metres, 4 is far away, 5 comes later.
PathScene walk() {
  PathScene scene;
  scene.person(1, {{0, -8, 0}, {16, 12, 0}});
  scene.person(2, {{0, -8, 0.7}, {16, 12, 0.7}});
  scene.person(3, {{0, -11, 0.4}, {16, 9, 0.4}});
  scene.person(4, {{0, 0, 60}, {16, 10, 60}});
  scene.person(5, {{17, 0, 0}, {20, 4, 0}});
  return scene;
}

TEST(PairStory, TellsWhyTwoAreTogether) {
  const std::string story = storyOf(walk(), 2, 1);
  EXPECT_THAT(story, StartsWith("Persons 1 and 2 are in view together from 0.0 s (frame 1)"));
  EXPECT_THAT(story, HasSubstr(": together, group 1\n"));
  EXPECT_THAT(story, HasSubstr("0.7 m lie between them on average"));
  EXPECT_THAT(story, HasSubstr("would speak against them: "));
}

TEST(PairStory, TellsWhyTwoAreNotAndWithWhomTheyAre) {
  const std::string story = storyOf(walk(), 1, 3);
  EXPECT_THAT(story, HasSubstr("in one group 0 % of that time"));
  EXPECT_THAT(story, HasSubstr(": not together\n"));
  EXPECT_THAT(story, HasSubstr("3.0 m lie between them on average"));
  EXPECT_THAT(story, HasSubstr("1 is in a group with 2, 3 is alone\n"));
  EXPECT_THAT(story, Not(HasSubstr("a near miss")));
}

TEST(PairStory, TellsThatGroupsMetThoughTheTwoAloneWouldNotBeTogether) {
  PathScene scene;
  scene.person(1, {{0, 0, 0}, {15, 16, 8}, {19, 20.8, 8}});
  scene.person(2, {{0, 0, 0.7}, {15, 16, 8.7}, {19, 20.8, 8.7}});
  scene.person(3, {{0, 0, 18}, {15, 16, 10.1}, {19, 20.8, 10.1}});
  scene.person(4, {{0, 0, 18.7}, {15, 16, 9.4}, {19, 20.8, 9.4}});
  EXPECT_THAT(storyOf(scene, 1, 3), HasSubstr("went on as one\n"));
}

TEST(PairStory, SaysWhenThereIsNothingToCompare) {
  EXPECT_THAT(storyOf(walk(), 1, 4), HasSubstr("never come within 6 m of each other"));
  EXPECT_EQ(storyOf(walk(), 1, 5), "Persons 1 and 5 are never in view together.\n");
}

TEST(PairWords, AccountForAllOfTheEvidence) {
  PairFeatures features;
  features.meanDistance = features.recentDistance = features.firstDistance = 1.0;
  features.largestDistance = 1.4;
  features.standing = 1.0;
  features.timeTogether = 30.0;
  const EvidenceModel model = EvidenceModel::builtIn();
  std::istringstream lines(reasonsFor(features, model));
  double sum = 0.0;
  for (std::string line; std::getline(lines, line);) {
    sum += std::stod(line.substr(18));
  }
  EXPECT_NEAR(sum, model.logOdds(features), 0.5) << "but for what is not worth a line";
  features.start = 1.0;
  EXPECT_THAT(reasonsFor(features, model), Not(HasSubstr("one after the other")))
      << "nobody saw them come";
}

}  // namespace

}  // namespace grouptracker
