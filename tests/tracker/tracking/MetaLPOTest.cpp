#include "tests/tracker/tracking/TrackingTest.h"

#include <cmath>
#include <ostream>
#include <utility>

namespace {

using Node = QSharedPointer<MetaLPO>;

struct Election {
  std::string name;
  double fatherDistanceWeight;
  std::vector<std::pair<unsigned int, double>> links;  ///< the father's frame and the reliability
  unsigned int elected;                                ///< id of the father, from 1 on in order
};
void PrintTo(const Election& row, std::ostream* out) {
  *out << row.name;
}

constexpr unsigned int nobody = 0xFFFFFFFFU;

class BestFather : public TrackingTest, public testing::WithParamInterface<Election> {};

TEST_P(BestFather, IsElectedFromTheLatestFrameBackwards) {
  const Election& row = GetParam();
  GroupTracker::fatherDistanceWeight = row.fatherDistanceWeight;
  const Node son = nodeOf(SceneMobile(9), 10);
  std::vector<Node> fathers;
  for (const auto& [fatherFrame, reliability] : row.links) {
    fathers.push_back(
        nodeOf(SceneMobile(static_cast<unsigned int>(fathers.size()) + 1), fatherFrame));
    link(fathers.back(), son, reliability);
  }
  son->sortLinks();
  EXPECT_EQ(son->computeBestFather(), row.elected);
  if (row.elected != nobody) {
    EXPECT_EQ(son->getBestFather(), fathers[row.elected - 1]);
    EXPECT_EQ(son->getBestFatherReliability(), row.links[row.elected - 1].second);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BestFather,
    testing::Values(
        Election{"NoLinks", 10, {}, nobody},
        Election{"OfOneFrameTheMostReliable", 0, {{9, 0.9}, {9, 0.4}}, 1},
        Election{"OfEqualOnesTheFirst", 0, {{9, 0.4}, {9, 0.4}}, 1},
        // 0.8 * 70 % = 0.56 is above 0.5
        Election{"AnOlderOneThatBeatsTheRawReliability", 10, {{9, 0.5}, {7, 0.8}}, 2},
        // 0.7 * 70 % = 0.49 is above 0.5 * 90 % = 0.45, but not above 0.5
        Election{"NotAnOlderOneThatBeatsTheScoreOnly", 10, {{9, 0.5}, {7, 0.7}}, 1},
        // 0.55 * 90 % is not above 0.5
        Election{"OfOneFrameOnlyOneThatBeatsTheRawReliability", 10, {{9, 0.5}, {9, 0.55}}, 1},
        Election{"ANegativeScoreAboveMinusOne", 150, {{9, 0.5}}, 1},
        Election{"NobodyBelowMinusOne", 300, {{9, 0.9}}, nobody}),
    [](const auto& row) { return row.param.name; });

class MetaLPOTest : public TrackingTest {};

TEST_F(MetaLPOTest, KeepsItsFatherUntilTheLinkIsTooOld) {
  const Node old = nodeOf(SceneMobile(1), 5);
  const Node recent = nodeOf(SceneMobile(2), 8);
  Node gone = nodeOf(SceneMobile(3), 9);
  const Node son = nodeOf(SceneMobile(4), 10);
  link(old, son, 0.9);
  EXPECT_EQ(son->computeBestFather(), 1U);
  link(recent, son, 1.0);
  link(gone, son, 0.1);
  gone.clear();
  EXPECT_EQ(son->computeBestFather(), 1U);

  son->eraseOldLinks(5);
  EXPECT_EQ(son->getFather(1), old);
  EXPECT_EQ(son->getFatherLinks().size(), 2U) << "a link to nobody is the oldest of all";
  son->eraseOldLinks(6);
  EXPECT_EQ(son->getFather(1), nullptr);
  EXPECT_EQ(son->getFather(2), recent);

  // Without a best father the node hands back a copy of itself, with its results but no links.
  const Node copy = son->getBestFather();
  EXPECT_NE(copy, son);
  EXPECT_EQ(copy->getIdent(), 4);
  EXPECT_EQ(copy->getFrame(), 10U);
  EXPECT_EQ(copy->getFatherLinks().size(), 0U);
  EXPECT_EQ(son->getBestFatherReliability(), 0.9);
  EXPECT_EQ(son->computeBestFather(), 2U);
}

/// Links a node to its only father; the step between them is 5 m unless told otherwise.
Node follow(const Node& father, float x = 3, float y = 4) {
  const auto ident = static_cast<unsigned int>(father->getIdent()) + 1;
  const auto& box = father->observation().getPosition();
  const Node son = nodeOf(SceneMobile(ident).at(box.x + x, box.y + y), father->getFrame() + 1);
  link(father, son, 0.9);
  son->computeBestFather();
  return son;
}

TEST_F(MetaLPOTest, AveragesSpeedsAlongTheHistory) {
  const Node first = nodeOf(SceneMobile(1), 1);
  const Node second = follow(first);
  EXPECT_EQ(second->computeSpeed(), 5.0) << "the father's speed was never computed";
  EXPECT_EQ(second->getSpeedSamples(), 1);

  EXPECT_EQ(first->computeSpeed(), 0.0);
  EXPECT_EQ(first->getSpeedSamples(), 0);
  EXPECT_EQ(first->computeDirection(), cv::Point3f(0, 0, 0));

  const Node third = follow(second, 0, -2);
  EXPECT_EQ(third->computeSpeed(), (5.0 + 2.0) / 2);
  const Node fourth = follow(third, 1, 0);
  EXPECT_EQ(fourth->computeSpeed(), (2 * 3.5 + 1.0) / 3);
  EXPECT_EQ(fourth->getSpeedSamples(), 3);
  EXPECT_EQ(fourth->computeSpeedRec(), 1.0);
  EXPECT_EQ(third->computeDirection(), cv::Point3f(0, -2, 0));
}

TEST_F(MetaLPOTest, CachesOnlySpeedsAboveAStandstill) {
  Node father = nodeOf(SceneMobile(1), 1);
  const Node standing = follow(father, 0, 0);
  const Node walking = follow(father);
  EXPECT_EQ(standing->computeSpeed(), 0.0);
  EXPECT_EQ(standing->getSpeedSamples(), 1);
  EXPECT_EQ(follow(standing)->computeSpeed(), 5.0) << "a standstill does not slow down";
  walking->computeSpeed();
  father.clear();  // elected but gone
  EXPECT_EQ(standing->computeSpeed(), 0.0);
  EXPECT_EQ(standing->getSpeedSamples(), 0);
  EXPECT_EQ(walking->computeSpeed(), 5.0);
  EXPECT_EQ(walking->computeDirection(), cv::Point3f(0, 0, 0));
}

TEST_F(MetaLPOTest, ScoresTheAncestryOfAnObjectByItsBestLine) {
  MetaLPO::recentLinkWeight = 0.5;
  scene.frame(1).person(1);
  scene.frame(2).person(2).from(1, 0.5);
  scene.frame(3).person(3).from(1, 0.875).from(2, 0.75);
  scene.actors(3);
  const MetaLPO node;
  const auto score = [&](unsigned int depth) { return node.fatherScore(scene.mobile(3), depth); };
  EXPECT_EQ(score(0), 0.0);
  EXPECT_EQ(score(1), 0.4375) << "the strongest link";
  EXPECT_EQ(score(2), 0.375 + 0.125) << "the line through the second one";
  EXPECT_EQ(score(9), 0.5);
  EXPECT_EQ(node.fatherScore(scene.mobile(1), 9), 0.0);
}

}  // namespace
