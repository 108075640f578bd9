#include "tests/tracker/tracking/TrackingTest.h"
#include "tracker/clustering/matrix.h"

namespace {

using testing::HasSubstr;

/// A scene of 10 m by 10 m, so that a metre is a tenth in the features.
class ClusterGroups : public TrackingTest {
 protected:
  ClusterGroups() {
    clusters = true;
    GroupTracker::tolerance = 0.2;
    tracker.setSceneMaxX(10);
    tracker.setSceneMaxY(10);
  }
};

TEST_F(ClusterGroups, WhoWalksTogetherIsAGroup) {
  scene.walk(1, 1, 4, {1, 1});
  scene.walk(2, 1, 4, {1, 2});
  scene.walk(3, 1, 4, {1, 8});
  scene.frame(1).person(4).at(1, 1).type("NOISE");
  run(2);
  EXPECT_EQ(step(),
            "TPO 1\nTPO 2\nTPO 3\n"
            "mobiles at processed frame 1:\n"
            "101 (PERSON), 102 (PERSON), 103 (PERSON), 4 (NOISE), \n"
            "nMobiles = 3\n"
            "nFeatures = 4\n"
            "nFeaturesSpeed = 2\n"
            "data size = 6\n"
            "meanShift done, counter = 2\n"
            " [1.0000000149011612; 1.5000000223517418]      // Center 0\n\n"
            " [1.0000000149011612; 8.0000001192092896]      // Center 1\n\n"
            "center 0 assigned to new NULL group\n"
            "center 1 assigned to new NULL group\n"
            "finally:\n"
            "cluster 0 --> group -1 and mobiles 101 102 \n"
            "cluster 1 --> group -1 and mobiles 103 \n"
            "currentId group = 0\n"
            "group 0 being created with mobiles 101 102 \n"
            "------------ Groups:\n"
            "- 0, mobiles: 101 102 startFrame=1, endFrame=-1, isUpdated=true\n"
            "--------------------\n"
            "here it goes bad\n"
            "here it went bad\n");
  // From now on the cluster votes for the group and its mobiles join by their fathers.
  EXPECT_THAT(step(), HasSubstr("cluster 0 --> group 0 and mobiles 201 202 \n"));
  EXPECT_THAT(line(0), testing::StartsWith("mobiles: 101 102 201 202 "));
}

TEST_F(ClusterGroups, WithoutPersonsOnlyTheMaintenanceRuns) {
  scene.frame(1).person(1).type("NOISE");
  EXPECT_EQ(step(), "TPO 1\n");
  run(2);
  EXPECT_THAT(step(), HasSubstr("meanShift done, counter = 0\nfinally:\n------------ Groups:\n"));
}

TEST_F(ClusterGroups, TiedVotesGoToTheSmallerIdUnlessItIsTooFar) {
  //  frame 1      frame 2: all in one cluster, two of each group
  //  1, 2 (g0)
  //  3, 4 (g1)
  GroupTracker::maxDistGroupUpdate = 0.0;
  scene.walk(1, 1, 5, {1, 1}, {0, 0.01F});
  scene.walk(2, 1, 5, {1, 1.5F}, {0, 0.01F});
  scene.walk(3, 1, 1, {1, 9});
  scene.walk(4, 1, 1, {1, 9.5F});
  scene.walk(3, 2, 5, {1, 2}, {0, 0.01F});
  scene.walk(4, 2, 5, {1, 2.5F}, {0, 0.01F});
  run(2);
  EXPECT_THAT(step(), HasSubstr("group 1 being created with mobiles 103 104 \n"));
  GroupTracker::maxDistGroupMerge = 0.5;
  EXPECT_THAT(step(), HasSubstr("too far, 0 can not be associated to 0\n"
                                "center 0 assigned to new NULL group\n"
                                "finally:\n"
                                "cluster 0 --> group -1 and mobiles 201 202 203 204 \n"));
}

TEST_F(ClusterGroups, AMissedFrameIsInterpolatedDownwards) {
  //  frame 1       2                3
  //  A at 5 ---------------------- at 6   (missed at frame 2)
  //  B at 5 ------ at 4.5 -------- at 6
  Util::temporalWinSize = 3;
  GroupTracker::tolerance = 0.001;
  scene.frame(1).person(1).at(5, 5);
  scene.frame(3).person(3).at(6, 6).follows(1);
  scene.frame(1).person(101).at(5, 5);
  scene.frame(2).person(102).at(4.5F, 4.5F).follows(101);
  scene.frame(3).person(103).at(6, 6).follows(102);
  run(3);
  EXPECT_THAT(step(), HasSubstr("counter = 1\n")) << "both have the same features";
}

TEST_F(ClusterGroups, StepsCountHalfInMetres) {
  // Over a tenth of the scene's unit apart by half the step, and hardly by the place.
  GroupTracker::tolerance = 0.05;
  scene.walk(1, 1, 3, {1, 1}, {0, 0});
  scene.walk(2, 1, 3, {1, 1}, {0.2F, 0});
  run(2);
  EXPECT_THAT(step(), HasSubstr("counter = 2\n"));
}

TEST_F(ClusterGroups, ASmallPersonOrAWindowOfOneThrows) {
  scene.walk(1, 1, 3, {1, 1});
  scene.frame(1).person(2).at(1, 2).size(0.43F, 0.19F, 1.7F);
  run(2);
  EXPECT_THROW(step(), math::matrix_error);

  GroupTracker other;
  Util::temporalWinSize = 1;
  Scene ofOne;
  ofOne.walk(1, 1, 2, {1, 1});
  other.initFrame(ofOne.actors(1), {}, 1);
  other.clusterGroups({});
  other.initFrame(ofOne.actors(2), {}, 2);
  EXPECT_THROW(other.clusterGroups({}), math::matrix_error);
}

}  // namespace
