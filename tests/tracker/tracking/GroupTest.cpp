#include "tests/tracker/tracking/TrackingTest.h"

#include <cmath>
#include <initializer_list>
#include <limits>
#include <map>

namespace {

using Node = QSharedPointer<MetaLPO>;

Node person(unsigned int ident, unsigned int frame, float x = 0, float y = 0) {
  return nodeOf(SceneMobile(ident).at(x, y), frame);
}

/// The person one frame later, elsewhere and under another id.
Node later(const Node& father, unsigned int ident, float x = 0, float y = 0) {
  const Node son = person(ident, father->getFrame() + 1, x, y);
  link(father, son, 0.9);
  son->computeBestFather();
  father->setBestSon(son);
  return son;
}

void add(Group& group, std::initializer_list<Node> nodes) {
  for (const Node& node : nodes) {
    group.addMobile(node);
  }
}

void close(Group& group, unsigned int frame, std::initializer_list<Node> nodes) {
  std::map<int, Node> remembered;
  for (const Node& node : nodes) {
    remembered[node->getIdent()] = node;
  }
  group.closeFrame(frame, remembered, {});
}

class GroupTest : public TrackingTest {};

TEST_F(GroupTest, DrawsAnIdUnlessItIsACopy) {
  const auto drawIds = [] {
    const Group first;
    const Group second(person(7, 3));
    Group::getNewId();
    Group::forgetLastId();
    const Group copy(second);
    const Group third(5U);
    EXPECT_EQ(copy.getId(), 1);
    EXPECT_EQ(third.getId(), 2);
    EXPECT_NE(third.getColor(), second.getColor());
    EXPECT_EQ(copy.getColor(), second.getColor());
  };
  EXPECT_EQ(printed(drawIds),
            "currentId group = 0\n"
            "currentId group = 1\n"
            "currentId group = 2\n"
            "currentId-- 2\n"
            "currentId group = 2\n");
}

TEST_F(GroupTest, WeighsMobilesByTypeForGoodAndForAFrame) {
  struct Row {
    const char* type;
    int forGood;
    int atFrame;
  };
  for (const auto& [type, forGood, atFrame] : {Row{"PERSON", 1, 1}, Row{"GROUP_OF_PERSONS", 2, 2},
                                               Row{"NOISE", 0, 1}, Row{"CROWD", 0, 1}}) {
    Group group;
    group.addMobile(nodeOf(SceneMobile(1).type(type), 4));
    EXPECT_EQ(group.getNumMobiles(), forGood) << type;
    EXPECT_EQ(group.numMobilesAtFrame(4), atFrame) << type;
    EXPECT_EQ(group.numMobilesAtFrame(3), 0) << type;
  }
}

TEST_F(GroupTest, CountsThoseWhoLeaveAndComeBack) {
  //  frame 1   frame 2          frame 3
  //  1 ------- 11 ------------- 21
  //  2 ------- 12 ------------- 22, 23, 24
  //  3 ------- 13 (outside)
  const Node one = person(1, 1);
  const Node two = person(2, 1);
  const Node three = person(3, 1);
  const Node eleven = later(one, 11);
  const Node twelve = later(two, 12);
  const Node thirteen = later(three, 13);
  const auto counts = [](const Group& group) {
    return std::pair(group.getNumMobiles(), group.getMobilesLeft());
  };

  Group lost;
  add(lost, {one, two, three, eleven, twelve});
  EXPECT_EQ(counts(lost), std::pair(3, 0)) << "sons of members are the members";
  close(lost, 2, {eleven, twelve});
  EXPECT_EQ(counts(lost), std::pair(2, 0));

  Group twice;
  add(twice, {one, two, three, eleven});
  close(twice, 2, {eleven, twelve, thirteen});
  EXPECT_EQ(counts(twice), std::pair(3, 4)) << "each of the two counts both";

  Group outside;
  add(outside, {one, two, three, eleven, twelve});
  close(outside, 2, {eleven, twelve, thirteen});
  EXPECT_EQ(counts(outside), std::pair(3, 1));
  add(outside, {later(eleven, 21), later(twelve, 22), later(twelve, 23)});
  EXPECT_EQ(counts(outside), std::pair(3, 0));
  add(outside, {later(twelve, 24)});
  EXPECT_EQ(counts(outside), std::pair(4, 0));
}

TEST_F(GroupTest, ClosingAFrameCountsItAndForgetsOldMembers) {
  GroupTracker::maxFrames = 1;
  const Node first = person(1, 1);
  Group group(first);
  EXPECT_TRUE(group.isUpdated());
  close(group, 1, {});
  EXPECT_FALSE(group.isUpdated());
  add(group, {later(first, 2)});
  close(group, 2, {});
  EXPECT_EQ(group.getFramesAlone(), 2);
  EXPECT_EQ(printed([&] { group.printMobiles(); }), "Mobiles of group 0: 1, 2, \n");
  add(group, {person(3, 3)});
  close(group, 3, {});
  EXPECT_EQ(group.getFramesAlone(), 0);
  EXPECT_EQ(group.countDistinctFrames(), 2);
  EXPECT_EQ(printed([&] { group.printMobiles(); }), "Mobiles of group 0: 2, 3, \n");
}

TEST_F(GroupTest, BoxesHoldTheMembersOfTheFrame) {
  const auto seen = [](unsigned int ident, const cv::Rect& box, float x, float height) {
    return nodeOf(SceneMobile(ident).at(x, 2 * x).size(1, 2, height).box2D(box), 5);
  };
  Group group;
  EXPECT_EQ(group.bbox2D(5), cv::Rect(0, 0, 0, 0));
  add(group, {seen(1, {10, 20, 30, 40}, -1, 1.5F), seen(2, {50, 10, 20, 20}, 3, 2), person(3, 6)});
  EXPECT_EQ(group.bbox2D(5), cv::Rect(10, 10, 60, 50));
  const BoundingBox3D box = group.bbox3D(5);
  EXPECT_EQ(box.b0, 3.5F);
  EXPECT_EQ(box.b1, 7.0F);
  EXPECT_EQ(box.b2, 2.0F);
  EXPECT_EQ(box.b3, -1.5F);
  EXPECT_EQ(box.b4, -3.0F);
  EXPECT_EQ(box.b5, 0.0F);
  const BoundingBox3D none = group.bbox3D(4);
  EXPECT_EQ(none.b0, 0.0F);
  EXPECT_EQ(none.b5, 0.0F);

  Group outside;
  add(outside, {seen(1, {-30, -50, 10, 20}, 0, 2)});
  EXPECT_EQ(outside.bbox2D(5), cv::Rect(-30, -50, 30, 50)) << "the far edges count as 0";
}

TEST_F(GroupTest, KeepsThePatchesOfTheLastFrames) {
  GroupTracker::maxFrames = 2;
  cv::Mat pixels(40, 60, CV_8UC3);
  for (int y = 0; y < pixels.rows; ++y) {
    for (int x = 0; x < pixels.cols; ++x) {
      pixels.at<cv::Vec3b>(y, x) = cv::Vec3b(static_cast<uchar>(x), static_cast<uchar>(y), 201);
    }
  }
  const auto image = QSharedPointer<kelDataImage>::create(pixels);
  Group group;
  for (frame = 1; frame <= 6; ++frame) {
    const cv::Rect box(static_cast<int>(frame), 10, 20, 15);
    add(group, {nodeOf(SceneMobile(frame).box2D(box), frame)});
    group.closeFrame(frame, {}, image);
  }
  group.closeFrame(7, {}, image);
  EXPECT_EQ(group.getROIs().size(), 3U) << "what is too old goes";
  EXPECT_EQ(group.getROIs().begin()->first, 5);
  const ROI& patch = group.getROIs().at(6);
  EXPECT_EQ(patch.getRect(), cv::Rect(6, 10, 20, 15));
  ASSERT_EQ(patch.getImage().type(), CV_32FC3);
  ASSERT_EQ(patch.getImage().size(), cv::Size(20, 15));
  EXPECT_EQ(patch.getImage().at<cv::Vec3f>(0, 0), cv::Vec3f(6, 10, 201));
  EXPECT_EQ(patch.getImage().at<cv::Vec3f>(14, 19), cv::Vec3f(25, 24, 201));
  EXPECT_TRUE(group.getROIs().at(7).getImage().empty()) << "nobody is there";

  // Of a box that reaches beyond the image only the inner part has pixels.
  add(group, {nodeOf(SceneMobile(8).box2D({-2, 35, 10, 10}), 8)});
  group.closeFrame(8, {}, image);
  const cv::Mat& cut = group.getROIs().at(8).getImage();
  ASSERT_EQ(cut.size(), cv::Size(10, 10));
  EXPECT_EQ(cut.at<cv::Vec3f>(0, 2), cv::Vec3f(0, 35, 201));
  EXPECT_EQ(cut.at<cv::Vec3f>(4, 9), cv::Vec3f(7, 39, 201));

  group.freeROIs();
  EXPECT_EQ(group.getROIs().size(), 3U);
  EXPECT_TRUE(group.getROIs().at(8).getImage().empty());
  EXPECT_EQ(group.getROIs().at(8).getRect(), cv::Rect(0, 0, 0, 0));
}

TEST_F(GroupTest, IsRepresentedByWhoIsNearestToWhereItWasBefore) {
  Group group;
  EXPECT_EQ(group.centerOfGravity(5), cv::Point3f(0, 0, 0));
  add(group,
      {person(1, 2, 0), person(2, 2, 1), person(3, 5, 8), person(4, 5, 6), person(5, 5, 5000)});
  EXPECT_EQ(group.centerOfGravity(5), cv::Point3f(0.5F, 0, 0.85F));
  EXPECT_EQ(group.centerOfGravity(2), cv::Point3f(0.5F, 0, 0.85F));
  group.computeBestMobile(5);
  EXPECT_EQ(group.getBestMobileId(), 4);
  group.removeMobile(4);
  EXPECT_EQ(group.getBestMobileId(), 3);
  group.removeMobile(3);
  EXPECT_EQ(group.getBestMobileId(), 3) << "nobody beyond 1000 m represents the group";
  group.removeMobile(5);
  EXPECT_EQ(group.getBestMobileId(), 1);
}

TEST_F(GroupTest, CoherenceWeighsDistancesSpeedsAndDirections) {
  // Steps of 1 m and 0.5 m along x, 1.25 m apart.
  const Node aStart = person(1, 1, 0, 0);
  const Node bStart = person(2, 1, 1.25F, 1);
  const Node a = later(aStart, 3, 1, 0);
  const Node b = later(bStart, 4, 1.75F, 1);
  Group group;
  add(group, {a, b});
  const double directions = std::sqrt(0.125 / 3 / 2);
  EXPECT_EQ(group.getAvgIntraDist(), 1.25);
  EXPECT_EQ(group.computeSpeedDirSimilitude(), (std::pair<double, double>{0.25, directions}));
  EXPECT_EQ(group.groupCoherence(), (2 * 1.25 + 0.25 + directions) / 4);

  // The distance is a running mean over the closed frames; a single newcomer counts with the
  // member of the next lower id, whatever its frame.
  close(group, 2, {});
  const Node newcomer = later(a, 5, 4.75F, 5);
  add(group, {newcomer});
  EXPECT_EQ(group.getAvgIntraDist(), (1.25 + 2 * 5.0) / (1 + 2.0));
  EXPECT_EQ(group.getSpeedSimilitude(), 0.25 / 2) << "one is not different from himself";
  add(group, {later(b, 6, 6.25F, 7)});
  EXPECT_EQ(group.getAvgIntraDist(), (1.25 + 2.5) / 2);

  // With one member at a frame, all are compared with each other.
  Group line;
  add(line, {bStart, b});
  EXPECT_EQ(line.getSpeedSimilitude(), 0.25);
  EXPECT_EQ(line.getDirSimilitude(), directions);
}

TEST_F(GroupTest, CoherenceWithAHistoryLooksForward) {
  Group::speedSimWeight = Group::dirSimWeight = 0;
  const Node a = person(1, 1, 0, 0);
  const Node b = person(2, 1, 0, 1);
  Group group(a);
  EXPECT_DOUBLE_EQ(group.groupCoherence(b), (1 + 5 * 1.0) / 5 * 10);
  const Node aLater = later(a, 3, 1, 0);
  EXPECT_DOUBLE_EQ(group.groupCoherence(b), (1 + 5 * 1.0) / 5 * 10) << "both must go on";
  const Node bLater = later(b, 4, 1, 4);
  const double w0 = 10.0 / 3;
  const double w1 = 10.0 * std::exp(-1.0 / 3) / 3;
  // Nothing was closed, so the 4 m of the second frame are halved.
  EXPECT_DOUBLE_EQ(group.groupCoherence(b), (1 + w0 * 1 + w1 * 2) / (w0 + w1) * 10);
  EXPECT_EQ(group.getLPOs().size(), 1U);
  EXPECT_EQ(group.groupCoherence(), 0.0);
}

TEST_F(GroupTest, NobodyJoinsThroughARepresentativeThatIsNotThere) {
  Group group;  // nobody represents it before its first frame is closed
  const Node early = person(5, 4, 1, 0);
  const Node other = person(6, 5);
  add(group, {early, other});
  EXPECT_EQ(group.groupCoherence(person(7, 5, 1, 0)), std::numeric_limits<double>::infinity());
  close(group, 5, {other});
  EXPECT_EQ(group.getBestMobileId(), 6);
  EXPECT_LT(group.groupCoherence(person(7, 5, 1, 0)), 100);
}

TEST_F(GroupTest, DistanceIsToWhereTheGroupWasSeenLast) {
  Group group(person(1, 1, 0, 0));
  const Node mobile = person(2, 5, 3, 4);
  EXPECT_EQ(group.distance(mobile, 5), 5.0);
  add(group, {person(3, 4, 3, 3)});
  EXPECT_EQ(group.distance(mobile, 5), 1.0);

  Group young(4U);
  add(young, {person(1, 1, 3, 3)});
  EXPECT_EQ(young.distance(mobile, 5), 5.0) << "not before its start: an empty box at the origin";
}

}  // namespace
