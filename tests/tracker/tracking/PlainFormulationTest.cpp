#include "tests/support/process/Printed.h"
#include "tests/support/process/RandomScene.h"
#include "tests/support/process/StaticsGuard.h"
#include "tests/support/process/TestParameters.h"
#include "tests/tracker/tracking/PlainFormulation.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/GroupTracker.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

struct Case {
  const char* name;
  bool hasOddities;
  bool reusesIds;
};

bool haveSameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

class FastFormulation : public testing::TestWithParam<Case> {
 protected:
  FastFormulation() { setTestParameters(); }

  /// Lets a tracker run over random scenes and looks at it in the middle of every frame.
  template <typename Look>
  void overRandomScenes(Look look) {
    for (unsigned int seed = 1; seed <= 6; ++seed) {
      Util::temporalWinSize = 1 + seed % 4;
      GroupTracker::maxFrames = 2 + 3 * (seed % 3);
      RandomScene scene({.seed = seed,
                         .people = 12,
                         .hasOddities = GetParam().hasOddities,
                         .reusesIds = GetParam().reusesIds});
      GroupTracker tracker;
      for (unsigned int frame = 1; frame <= 40; ++frame) {
        printed([&] {
          tracker.initFrame(scene.next(), {}, frame);
          look(tracker, frame);
          tracker.trackGroups();
        });
        if (HasFatalFailure()) {
          FAIL() << "seed " << seed << ", frame " << frame;
        }
      }
    }
  }

 private:
  StaticsGuard m_statics;
};

TEST_P(FastFormulation, GivesTheBitsOfThePlainCoherence) {
  int compared = 0;
  overRandomScenes([&](GroupTracker& tracker, unsigned int frame) {
    if (frame <= Util::temporalWinSize) {
      return;
    }
    for (const auto& group : tracker.getGroups()) {
      const auto [speed, direction] = group->computeSpeedDirSimilitude();
      const auto plain = PlainFormulation::spreads(*group);
      ASSERT_TRUE(haveSameBits(speed, plain.first) && haveSameBits(direction, plain.second));
      for (const auto& mobile : tracker.mobilesAt(frame - Util::temporalWinSize)) {
        const double expected = PlainFormulation::coherence(*group, mobile);
        ASSERT_TRUE(haveSameBits(group->groupCoherence(mobile), expected)) << expected;
        const double limited = group->groupCoherence(mobile, expected / 2);
        ASSERT_TRUE(haveSameBits(limited, expected) || limited >= expected / 2);
        ++compared;
      }
    }
  });
  EXPECT_GT(compared, 100);
}

TEST_P(FastFormulation, FindsThePlainBestSons) {
  int compared = 0;
  overRandomScenes([&](GroupTracker& tracker, unsigned int frame) {
    for (const auto& [father, son] : PlainFormulation::bestSons(tracker, frame)) {
      // An odd frame may cut the intake short, and then nobody's sons are looked for.
      ASSERT_TRUE(father->getBestSon().data() == son || GetParam().hasOddities);
      ++compared;
    }
  });
  EXPECT_GT(compared, 100);
}

TEST_P(FastFormulation, FindsThePlainSplits) {
  std::size_t lines = 0;
  overRandomScenes([&](GroupTracker& tracker, unsigned int) {
    const std::string expected = PlainFormulation::splitLines(tracker);
    Diagnostics::flush();
    testing::internal::GetCapturedStdout();
    testing::internal::CaptureStdout();
    tracker.detectSplit();
    Diagnostics::flush();
    const std::string found = testing::internal::GetCapturedStdout();
    testing::internal::CaptureStdout();
    ASSERT_EQ(found, expected);
    lines += expected.size();
  });
  EXPECT_GT(lines, 0U);
}

INSTANTIATE_TEST_SUITE_P(Scenes, FastFormulation,
                         testing::Values(Case{"Plain", false, false}, Case{"Odd", true, false},
                                         Case{"ReusedIds", false, true},
                                         Case{"OddAndReused", true, true}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
