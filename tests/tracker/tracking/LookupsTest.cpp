#include "tests/tracker/tracking/TrackingTest.h"

namespace {

/// What the tracker can be asked though no frame asks it.
class Lookups : public TrackingTest {
 protected:
  const QSharedPointer<kelDataLinkedPhysicalObject>& object(unsigned int ident) const {
    return scene.mobile(ident);
  }
};

TEST_F(Lookups, TheStrongestFatherIsThatOfTheFirstOfTheStrongestLinks) {
  GroupTracker::reliabilityThreshold = 0.5;
  scene.frame(1).person(1).at(1, 0).box2D({1, 2, 3, 4});
  scene.frame(1).person(2);
  scene.frame(1).person(3);
  scene.frame(2).person(4).from(3, 0.4).from(1, 0.5).from(2, 0.5);
  scene.frame(2).person(5).from(3, 0.4);
  scene.actors(2);
  EXPECT_EQ(tracker.getStrongestFather(object(4), true), object(1));
  EXPECT_EQ(tracker.getStrongestFather(object(5), false), object(3));
  EXPECT_EQ(tracker.getStrongestFather(object(5), true), object(5)) << "none is reliable enough";
  EXPECT_EQ(tracker.getStrongestFather(object(1), false), object(1)) << "nobody came before";
  EXPECT_EQ(tracker.getStrongestFather2D(object(4), true), (std::pair{1U, cv::Rect(1, 2, 3, 4)}));
  const auto [ident, box] = tracker.getStrongestFather3D(object(4), true);
  EXPECT_EQ(ident, 1U);
  EXPECT_EQ(box.b0, 1.25F);
}

TEST_F(Lookups, FindTheGroupOfTheNearestAncestor) {
  Group::coherenceThreshold = 1000.0;
  scene.walk(1, 1, 1, {0, 0});
  scene.walk(2, 1, 1, {0, 1});
  for (unsigned int later = 2; later <= 3; ++later) {
    scene.walk(1, later, later, {0, static_cast<float>(30 * later)});
  }
  run(3);
  EXPECT_EQ(groupOf(101), 0);
  for (const int depth : {0, 1}) {
    EXPECT_EQ(tracker.ancestorGroup(301U, depth), GroupTracker::none);
    EXPECT_EQ(tracker.ancestorGroup(object(301), depth), GroupTracker::none);
  }
  EXPECT_EQ(tracker.ancestorGroup(301U, 2), 0U);
  EXPECT_EQ(tracker.ancestorGroup(object(301), 2), 0U);
  EXPECT_EQ(tracker.ancestorGroup(101U, 5), GroupTracker::none) << "its own does not count";
  EXPECT_EQ(tracker.ancestorGroup(object(101), 5), GroupTracker::none);
  EXPECT_EQ(printed([&] { tracker.ancestors(object(301)); }), "201 101 ");
  EXPECT_FALSE(tracker.getMobile(101).second) << "the list it searches is never filled";
  EXPECT_EQ(tracker.ancestorsInSameGroup({301, 201}, 2), GroupTracker::none);
}

}  // namespace
