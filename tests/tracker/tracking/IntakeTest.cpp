#include "tests/support/base/Texts.h"
#include "tests/tracker/tracking/TrackingTest.h"

#include <cmath>
#include <filesystem>
#include <utility>

namespace {

class Intake : public TrackingTest {};

TEST_F(Intake, DumpsTheRememberedMobilesWithLinksAndChains) {
  const TempFolder folder;
  const auto dump = folder.path() / "dump.txt";
  tracker.setMobileDump(dump.string());
  scene.frame(1).person(1);
  scene.frame(2).person(2).follows(1, 0.8);
  scene.frame(3).person(3).follows(2, 0.9).from(1, 0.3);
  scene.frame(3).person(4).chain({1, 2});  // its own link is lost, so the chain starts anew
  run(1);
  const std::string firstFrame =
      "------------ Mobiles with Groups at frame 1\n"
      "mobile 1 @ frame 1 has best father -1 has best son -1 and is in group -1\n"
      "\tLTT chain: \n"
      "--------------------\n";
  EXPECT_EQ(textOf(dump), firstFrame);

  std::filesystem::remove(dump);
  run(2);
  std::filesystem::remove(dump);
  run(3);
  EXPECT_EQ(textOf(dump),
            "------------ Mobiles with Groups at frame 3\n"
            "mobile 1 @ frame 1 has best father -1 has best son 2 and is in group -1\n"
            "\tLTT chain: \n"
            "mobile 2 @ frame 2 has best father 1 has best son 3 and is in group -1\n"
            "\tlink from 1 to 2 with reliability 0.8\n"
            "\tLTT chain: 1 (0.8) - \n"
            "mobile 3 @ frame 3 has best father 2 has best son -1 and is in group -1\n"
            "\tlink from 1 to 3 with reliability 0.3\n"
            "\tlink from 2 to 3 with reliability 0.9\n"
            "\tLTT chain: 2 (0.9) - 1 (0.72) - \n"
            "mobile 4 @ frame 3 has best father -1 has best son -1 and is in group -1\n"
            "\tLTT chain: 2 (0) - 1 (0.8) - \n"
            "--------------------\n");
}

TEST_F(Intake, StopsAtAnActorWithoutMobiles) {
  const TempFolder folder;
  tracker.setMobileDump((folder.path() / "dump.txt").string());
  GroupTracker::maxFrames = 0;
  scene.frame(1).person(1);
  scene.frame(2).person(2);
  scene.frame(2).emptyActor(9);
  scene.frame(2).person(3);
  run(1);
  EXPECT_EQ(step(), "TPO 2\nTPO 9\n");
  EXPECT_NE(node(1), nullptr) << "nothing is forgotten";
  EXPECT_NE(node(2), nullptr);
  EXPECT_EQ(node(3), nullptr);
  EXPECT_EQ(textOf(folder.path() / "dump.txt").find("at frame 2"), std::string::npos);
}

TEST_F(Intake, PrefersThePredecessorOfTheChainWhenItIsReliableEnough) {
  scene.frame(1).person(1);
  scene.frame(1).person(2);
  scene.frame(2).person(3).chain({1}).from(1, 0.5).from(2, 0.95);
  const double reliability = 0.5 / std::log(3.0);
  for (const double limit : {0.455, 0.456}) {
    GroupTracker::minReliabilityBest = limit;
    GroupTracker other;
    other.initFrame(scene.actors(1), {}, 1);
    other.initFrame(scene.actors(2), {}, 2);
    const bool prefers = reliability > limit;
    EXPECT_EQ(other.node(3)->getBestFatherId(), prefers ? 1 : 2);
    EXPECT_EQ(other.node(3)->getBestFatherReliability(), prefers ? reliability : 0.95);
    EXPECT_EQ(other.node(1)->getBestSon(), other.node(3))
        << "a father that was not elected has a son as well";
  }
}

TEST_F(Intake, ACopyOfTheTrackerGoesOnByItself) {
  const TempFolder folder;
  const auto dump = folder.path() / "dump.txt";
  tracker.setMobileDump(dump.string());
  scene.walk(1, 1, 4, {0, 0});
  scene.walk(2, 1, 4, {0, 1});
  run(3);
  GroupTracker copy(tracker);
  std::filesystem::remove(dump);
  tracker.initFrame(scene.actors(4), {}, 4);
  const std::string dumped = textOf(dump);
  std::filesystem::remove(dump);
  copy.initFrame(scene.actors(4), {}, 4);
  EXPECT_EQ(textOf(dump), dumped);
  EXPECT_NE(copy.node(401), tracker.node(401));
  EXPECT_EQ(copy.node(301), tracker.node(301));
}

TEST_F(Intake, GivesSonsOfTheCurrentFrameToTheFrameJustBeforeOnly) {
  //  frame 1   2   3   4
  //  1 ----------- 3
  //            2 --+-- 4
  Util::temporalWinSize = 3;
  scene.frame(1).person(1);
  scene.frame(2).person(2);
  scene.frame(3).person(3).from(1, 0.9).from(2, 0.5);
  scene.frame(4).person(4).from(2, 0.85);
  run(3);
  EXPECT_EQ(node(1)->getBestSonId(), -1);
  EXPECT_EQ(node(1)->getBestSon(), node(3)) << "elected as father, but not yet known by id";
  EXPECT_EQ(node(2)->getBestSonId(), 3);
  EXPECT_DOUBLE_EQ(node(2)->getBestSonScore(), 0.5 * 0.95);
  run(4);
  EXPECT_EQ(node(1)->getBestSonId(), 3);
  EXPECT_DOUBLE_EQ(node(1)->getBestSonScore(), 0.9 * 0.9);
  EXPECT_EQ(node(2)->getBestSonId(), 3);
  run(5);
  EXPECT_EQ(node(2)->getBestSonId(), 4) << "0.85 * 90 % is more than 0.5 * 95 %";

  GroupTracker::sonDistanceWeight = 150;
  scene.frame(6).person(6);
  scene.frame(7).person(7).from(6, 0.8);
  run(7);
  EXPECT_DOUBLE_EQ(node(6)->getBestSonScore(), 0.8 * -0.5) << "nobody else is there";
}

TEST_F(Intake, ForgetsMobilesAndFramesBeyondTheMemory) {
  GroupTracker::maxFrames = 2;
  scene.walk(1, 1, 6, {0, 0});
  run(2);
  EXPECT_EQ(step().find("TPO 1\nerasing frame 0\n"), 0U);
  EXPECT_NE(node(101), nullptr);
  EXPECT_EQ(step().find("TPO 1\nerasing frame 1\n"), 0U);
  EXPECT_EQ(node(101), nullptr);
  EXPECT_EQ(node(201)->getFatherLinks().size(), 0U);
  EXPECT_EQ(node(201)->getBestFatherId(), -1);
  EXPECT_EQ(groupOf(101), -1);
}

TEST_F(Intake, AnIdDeclaredAgainMayBeItsOwnFather) {
  scene.frame(1).person(1);
  scene.frame(2).person(1).from(1, 0.9).type("GROUP_OF_PERSONS");
  scene.frame(3).person(2).from(1, 0.9).type("GROUP_OF_PERSONS");
  run(5);
  EXPECT_EQ(node(1)->getFrame(), 2U);
  EXPECT_EQ(node(1)->getBestFatherId(), 1);
  EXPECT_EQ(node(1)->computeSpeed(), 0.0);
  EXPECT_EQ(tracker.ancestorGroup(1, 5), GroupTracker::none);
  ASSERT_EQ(tracker.mobilesAt(1).size(), 1U);
  EXPECT_EQ(tracker.mobilesAt(1).front()->getFrame(), 1U);
}

}  // namespace
