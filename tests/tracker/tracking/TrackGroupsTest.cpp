#include "tests/tracker/tracking/TrackingTest.h"

#include <algorithm>
#include <cmath>

namespace {

using testing::HasSubstr;
using testing::Not;

class TrackGroups : public TrackingTest {};

TEST_F(TrackGroups, PairsFreePersonsThatStayTogether) {
  Util::temporalWinSize = 1;
  scene.walk(1, 1, 2, {0, 0});
  scene.walk(2, 1, 2, {0, 1});
  EXPECT_EQ(step(), "TPO 1\nTPO 2\n");
  // The pair's coherence is (0.5 + w0 * 0.5 + w1 * 0.25) / (w0 + w1) * 10 with a decay of 3 steps.
  EXPECT_EQ(step(),
            "TPO 1\n"
            "TPO 2\n"
            "mobiles at processed frame 1:\n"
            "101 (PERSON), 102 (PERSON), \n"
            "distance between 101 and 102 = 1.000000\n"
            "distance between 102 and 101 = 1.000000\n"
            "\n"
            "i_id = 101, groupId(i_id) = -1\n"
            "i_id = 101\n"
            "i_id = 101, j_id = 101\n"
            "i_id = 101, j_id = 102\n"
            "currentId group = 0\n"
            "created group 0 from pair 101 and 102 with group coherence 4.830281\n"
            "properties: 1.000000, 0.000000, 0.000000 (dist, speed, dir)\n"
            "i_id = 102, groupId(i_id) = 0\n"
            "------------ Groups:\n"
            "- 0, mobiles: 101 102 startFrame=1, endFrame=-1, isUpdated=true\n"
            "--------------------\n"
            "here it goes bad\n"
            "here it went bad\n");
  EXPECT_EQ(groupOf(101), 0);
}

TEST_F(TrackGroups, APairExactlyAtTheThresholdGivesItsIdBack) {
  scene.frame(1).person(1);
  scene.frame(1).person(2).at(1, 0);
  scene.frame(1).person(3).at(1, 0.5F).type("NOISE");
  scene.frame(1).person(4).at(0, -2);
  Group::coherenceThreshold = 6.0;  // (0.5 + 5 * 0.5) / 5 * 10
  run(2);
  const std::string text = step();
  EXPECT_THAT(text, HasSubstr("i_id = 1, j_id = 2\ncurrentId group = 0\ncurrentId-- 0\n"));
  EXPECT_THAT(text, Not(HasSubstr("_id = 3")));
  EXPECT_TRUE(tracker.getGroups().isEmpty());

  Group::coherenceThreshold = std::nextafter(6.0, 7.0);
  EXPECT_NE(tracker.tryPair(node(1), node(2)), nullptr);
  Group::coherenceThreshold = 1000.0;
  EXPECT_NE(tracker.tryPair(node(1), node(4)), nullptr) << "just near enough";
  GroupTracker::maxDistGroupCreation = std::nextafter(2.0, 0.0);
  EXPECT_EQ(tracker.tryPair(node(1), node(4)), nullptr);
}

TEST_F(TrackGroups, AThirdPersonJoinsThroughALinkToANeighbour) {
  GroupTracker::minReliabilityBest = 0.35;
  scene.walk(1, 1, 5, {0, 0});
  scene.walk(2, 1, 5, {0, 1});
  Group::coherenceThreshold = 100.0;
  scene.frame(3).person(33).at(0.5F, -2.5F).from(202, 0.21);  // 3 m away, as far as may be
  scene.frame(3).person(34).at(1, 2).from(202, 0.2);  // not above half of minReliabilityOthers
  scene.frame(3).person(35).at(0.5F, -2.6F).from(202, 0.9);
  run(4);
  EXPECT_EQ(line(0), "mobiles: 101 102 201 202 startFrame=1, endFrame=-1, isUpdated=false");
  run(5);
  EXPECT_EQ(line(0),
            "mobiles: 33 101 102 201 202 301 302 startFrame=1, endFrame=-1, isUpdated=false");
  EXPECT_EQ(groupOf(34), -1);
  EXPECT_EQ(groupOf(35), -1);
}

TEST_F(TrackGroups, OfEqualCoherencesTheSmallerIdJoins) {
  //  302
  //  102  101
  //  301
  Group::speedSimWeight = Group::dirSimWeight = 0;
  scene.frame(1).person(101).at(1, 1);
  scene.frame(1).person(102).at(0, 1);
  scene.frame(2).person(302).at(0, 3).from(102, 0.9);
  scene.frame(2).person(301).at(0, -1).from(102, 0.9);
  run(3);
  Group::coherenceThreshold = 25;  // between that of the first to join, 20, and the second's, 30
  EXPECT_EQ(tracker.getGroups().first()->groupCoherence(node(301)),
            tracker.getGroups().first()->groupCoherence(node(302)));
  step();
  EXPECT_EQ(groupOf(301), 0);
  EXPECT_EQ(groupOf(302), -1);
}

TEST_F(TrackGroups, TheOlderGroupAbsorbsTheYoungerWhenTheyShareASon) {
  //  frame 1    frame 2     frame 3
  //  101, 102 - 201, 202 --\.
  //                         30
  //             203, 204 --/
  scene.walk(1, 1, 4, {0, 0});
  scene.walk(2, 1, 4, {0, 1});
  scene.walk(3, 2, 4, {0, 6});
  scene.walk(4, 2, 4, {0, 7});
  scene.frame(3).person(30).at(0, 3).from(202, 1.0).from(203, 1.0);
  run(3);
  EXPECT_THAT(step(), HasSubstr("0 1 ------------ Groups:\n"
                                "- 0, mobiles: 101 102 201 202 203 204 startFrame=1, endFrame=-1, "
                                "isUpdated=true, merged with 1 at frame 2\n"
                                "--------------------\n"));
  EXPECT_EQ(groupOf(204), 0);
  EXPECT_EQ(tracker.getGroups().size(), 1);
}

TEST_F(TrackGroups, GroupsThatAllEndAreMergedAsIfTheyMet) {
  scene.walk(1, 1, 1, {0, 0});
  scene.walk(2, 1, 1, {0, 1});
  scene.walk(3, 1, 1, {0, 30});
  scene.walk(4, 1, 1, {0, 31});
  run(3);
  EXPECT_EQ(line(0),
            "mobiles: 101 102 103 104 startFrame=1, endFrame=-1, isUpdated=false, merged with 1 "
            "at frame 1");
}

TEST_F(TrackGroups, AnAncestorOfTheFifthGenerationInAnotherGroupIsASplit) {
  Group::coherenceThreshold = 1000.0;
  // 2 and 4 leave their companions after the first frame; 2 meets 5 five frames later, 4 meets 6
  // another frame later.
  for (const unsigned int stays : {1U, 3U}) {
    const auto y = static_cast<float>(100 * stays);
    scene.walk(stays, 1, 9, {0, y});
    scene.walk(stays + 1, 1, 1, {0, y + 1});
    scene.walk(stays + 1, 2, 9, {0, y + 20});
  }
  scene.walk(5, 6, 9, {2, 121});
  scene.walk(6, 7, 9, {2.5F, 321});
  run(7);
  EXPECT_THAT(step(), HasSubstr("Split between 0 and 2\n------------ Groups:\n"));
  EXPECT_THAT(line(2), testing::EndsWith(", splitted from 0 at frame 8"));
  EXPECT_THAT(step(), Not(HasSubstr("Split between 1")));
  EXPECT_THAT(line(3), testing::StartsWith("mobiles: 704 706 startFrame=7"));
}

TEST_F(TrackGroups, AGroupEndsIsEmptiedAndRemoved) {
  GroupTracker::maxFrames = 3;
  Util::temporalWinSize = 1;
  scene.walk(1, 1, 3, {0, 0});
  scene.walk(2, 1, 3, {0, 1});
  run(4);
  EXPECT_THAT(line(0), HasSubstr("endFrame=-1"));
  run(5);
  EXPECT_THAT(line(0), HasSubstr("endFrame=3, isUpdated=false"));
  run(6);
  EXPECT_EQ(line(0), "mobiles: 301 302 startFrame=1, endFrame=3, isUpdated=false");
  EXPECT_THAT(step(), testing::EndsWith("remove group 0\n"));
  EXPECT_TRUE(tracker.getGroups().isEmpty());
}

/// Puts all who are free into one group.
class Everybody : public Grouping {
 public:
  void beforeJoining(GroupTracker& /*tracker*/) override {}
  void afterJoining(GroupTracker& tracker) override {
    for (const auto& mobile : tracker.processedMobiles()) {
      if (tracker.homeOf(*mobile) != noId) {
        continue;
      }
      if (tracker.getGroups().isEmpty()) {
        tracker.createGroup(mobile);
      } else {
        tracker.addMobileToGroup(tracker.getGroups().first()->getId(), mobile);
      }
    }
  }
};

TEST_F(TrackGroups, AFrameCanBeGroupedInAnyMode) {
  Util::temporalWinSize = 1;
  scene.walk(1, 1, 3, {0, 0});
  scene.walk(2, 1, 3, {0, 50});
  Everybody mode;
  for (frame = 1; frame <= 3; ++frame) {
    tracker.initFrame(scene.actors(frame), {}, frame);
    tracker.groupFrame(mode);
  }
  EXPECT_EQ(line(0), "mobiles: 101 102 201 202 startFrame=1, endFrame=-1, isUpdated=false");
}

/// A pair walks to the third frame; there mobile 30 stands, labelled as a group, with links that
/// are too weak for anything but ancestry. The processed frame is the third at the fifth step.
class GroupMobile : public TrackingTest {
 protected:
  GroupMobile() {
    scene.walk(1, 1, 5, {0, 0});
    scene.walk(2, 1, 5, {0, 1});
  }
  SceneMobile& groupMobile() { return scene.frame(3).person(30).type("GROUP_OF_PERSONS"); }
  /// What the fifth step prints of the mobile alone.
  std::string considered() {
    run(4);
    text = step();
    const auto from = text.find("considering");
    const auto end = std::min(text.find("i_id = 30, j_id", from), text.find("-----", from));
    return text.substr(from, end - from);
  }

  std::string text;  ///< the whole of it
};

TEST_F(GroupMobile, JoinsTheGroupOfItsFather) {
  groupMobile().at(1, 1).from(201, 0.1).from(202, 0.1);
  EXPECT_EQ(considered(),
            "considering mobile labeled as group with id=30\n"
            "this mobile has a best father with id=201\n"
            "and groupId=0\n"
            "mobile 30 has ancestor in group 0\n"
            "distance from 30 to group 0 = 0.707107\n"
            "added mobile 30 to group 0 because of an ancestor with coherence 5.751171\n");
  EXPECT_EQ(groupOf(30), 0);
}

TEST_F(GroupMobile, TooFarAwayTriesToFoundAGroupFromItsAncestry) {
  groupMobile().at(1, 10).from(201, 0.1).from(202, 0.1);
  EXPECT_EQ(considered(),
            "considering mobile labeled as group with id=30\n"
            "this mobile has a best father with id=201\n"
            "and groupId=0\n"
            "mobile 30 has ancestor in group 0\n"
            "distance from 30 to group 0 = 9.513149\n"
            "too far, giving up.\n"
            "currentId group = 1\n"
            "currentId-- 1\n"
            "final coherence for creating group from group mobile 30 (n=3) = 77.164162\n");
  EXPECT_EQ(groupOf(30), -1);
}

TEST_F(GroupMobile, TooIncoherentLeavesItsLineOpen) {
  Group::coherenceThreshold = 5.0;
  groupMobile().at(1, 3).from(201, 0.1).from(202, 0.1);
  EXPECT_THAT(considered(), HasSubstr("because of coherence 8.082173currentId group = 1\n"));
}

TEST_F(GroupMobile, FoundsAGroupThatAFreePersonJoins) {
  scene.frame(2).person(20).at(5, 10).type("GROUP_OF_PERSONS");
  groupMobile().at(5.5F, 10).from(20, 0.1);
  scene.frame(3).person(40).at(5.5F, 11);
  scene.frame(3).person(50).at(5, 50).type("GROUP_OF_PERSONS");
  EXPECT_EQ(considered(),
            "considering mobile labeled as group with id=30\n"
            "this mobile has a best father with id=20\n"
            "and groupId=-1\n"
            "currentId group = 1\n"
            "currentId-- 1\n"
            "final coherence for creating group from group mobile 30 (n=2) = 0.985844\n"
            "currentId group = 1\n"
            "created new group with mobile 30 and id=1\n");
  EXPECT_THAT(text, HasSubstr("considering mobile labeled as group with id=50\n"
                              "this mobile has a best father with id=-1\n"
                              "and groupId=-1\n"
                              "i_id = 50, j_id = 50\n"));
  EXPECT_EQ(line(1), "mobiles: 30 40 startFrame=3, endFrame=-1, isUpdated=false");
}

}  // namespace
