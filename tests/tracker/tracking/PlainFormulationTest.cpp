#include "tests/support/base/Texts.h"
#include "tests/support/process/Printed.h"
#include "tests/support/process/RandomScene.h"
#include "tests/support/process/StaticsGuard.h"
#include "tests/tracker/tracking/PlainChains.h"
#include "tests/tracker/tracking/PlainFormulation.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/GroupTracker.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <list>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace {

struct Case {
  const char* name;
  bool hasOddities;
  bool reusesIds;
  unsigned int firstIdent = 1;
};

void PrintTo(const Case& row, std::ostream* out) {
  *out << row.name;
}

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
      RandomScene scene = sceneOf(seed);
      GroupTracker tracker;
      tracker.setMobileDump(dump.string());
      for (unsigned int frame = 1; frame <= 40; ++frame) {
        printed([&] {
          std::filesystem::remove(dump);
          handedIn = scene.next();
          tracker.initFrame(handedIn, {}, frame);
          look(tracker, frame);
          tracker.trackGroups();
        });
        if (HasFatalFailure()) {
          FAIL() << "seed " << seed << ", frame " << frame;
        }
      }
    }
  }

  /// A scene with its own delay and memory.
  static RandomScene sceneOf(unsigned int seed) {
    Util::temporalWinSize = 1 + seed % 4;
    GroupTracker::maxFrames = 2 + 3 * (seed % 3);
    return RandomScene({.seed = seed,
                        .people = 12,
                        .hasOddities = GetParam().hasOddities,
                        .reusesIds = GetParam().reusesIds,
                        .firstIdent = GetParam().firstIdent});
  }

  const TempFolder folder;
  const std::filesystem::path dump = folder.path() / "dump.txt";  ///< of the present frame
  PlainChains::Actors handedIn;                                   ///< in the present frame

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

TEST_P(FastFormulation, ReadsThePlainChains) {
  PlainChains plain;
  std::size_t compared = 0;
  overRandomScenes([&](GroupTracker& tracker, unsigned int frame) {
    if (frame == 1) {
      plain = {};
    }
    plain.takeIn(handedIn, static_cast<int>(frame));
    std::map<int, PlainChains::Chain> chains;
    for (const auto& [id, node] : PlainFormulation::remembered(tracker, frame)) {
      for (const auto& entry : node->chain()) {
        chains[id].emplace_back(entry.ident, entry.reliability);
      }
      chains[id];
    }
    ASSERT_EQ(chains, plain.all());
    compared += chains.size();
  });
  EXPECT_GT(compared, 1000U);
}

TEST_P(FastFormulation, DumpsWhatTheNodesAre) {
  int compared = 0;
  overRandomScenes([&](GroupTracker& tracker, unsigned int frame) {
    if (std::filesystem::exists(dump)) {  // not when the intake was cut short
      ASSERT_EQ(textOf(dump), PlainFormulation::dump(tracker, frame));
      ++compared;
    }
  });
  EXPECT_GT(compared, 100);
}

TEST_P(FastFormulation, PrintsTheMembersOfTheGroups) {
  overRandomScenes([&](GroupTracker& tracker, unsigned int) {
    std::string found;
    Diagnostics::flush();
    testing::internal::GetCapturedStdout();
    found = printed([&] { tracker.printGroups(); });
    testing::internal::CaptureStdout();
    for (const char* const event : {", merged with", ", splitted from"}) {
      for (auto from = found.find(event); from != std::string::npos; from = found.find(event)) {
        found.erase(from, std::min(found.find(", s", from + 1), found.find('\n', from)) - from);
      }
    }
    ASSERT_EQ(found, PlainFormulation::groupLines(tracker));
  });
}

TEST_P(FastFormulation, LeavesNobodyInAGroupThatIsGone) {
  overRandomScenes([&](GroupTracker& tracker, unsigned int frame) {
    for (const auto& [id, node] : PlainFormulation::remembered(tracker, frame)) {
      ASSERT_TRUE(node->getGroupId() == noId || tracker.getGroups().contains(node->getGroupId()))
          << id;
    }
  });
}

TEST_P(FastFormulation, LetsTheSameMobilesJoinAsAskingEverybodyAnewDoes) {
  std::size_t joined = 0;
  for (unsigned int seed = 1; seed <= 6; ++seed) {
    RandomScene scene = sceneOf(seed);
    GroupTracker fast;
    GroupTracker plain;
    int nextId = 0;  // each tracker gives its own ids
    for (unsigned int frame = 1; frame <= 40; ++frame) {
      const auto& actors = scene.next();
      const unsigned int processed = frame - Util::temporalWinSize;
      printed([&] {
        Group::currentId = nextId;
        fast.initFrame(actors, {}, frame);
        fast.updateGroups();
        plain.initFrame(actors, {}, frame);
        if (static_cast<int>(processed) > 0) {
          PlainFormulation::updateGroups(plain, processed);
        }
        for (const auto& mobile : fast.mobilesAt(processed)) {
          joined += mobile->getGroupId() != noId ? 1 : 0;
        }
        fast.trackGroups();
        Group::currentId = nextId;
        plain.trackGroups();
        nextId = Group::currentId;
      });
      ASSERT_EQ(PlainFormulation::groupLines(fast), PlainFormulation::groupLines(plain))
          << "seed " << seed << ", frame " << frame;
    }
  }
  EXPECT_GT(joined, 500U);
}

TEST_P(FastFormulation, IsNotDisturbedByAnotherTracker) {
  // Runs over some scenes side by side, each with its own ids of groups; returns their lines.
  const auto run = [&](const std::vector<unsigned int>& seeds) {
    struct Run {
      RandomScene scene;
      GroupTracker tracker;
      int nextId = 0;
      std::string lines;
    };
    std::list<Run> runs;
    for (const unsigned int seed : seeds) {
      runs.push_back({sceneOf(seed), {}, 0, {}});
    }
    sceneOf(3);
    for (unsigned int frame = 1; frame <= 30; ++frame) {
      for (Run& each : runs) {
        Group::currentId = each.nextId;
        each.lines += printed([&] {
          each.tracker.initFrame(each.scene.next(), {}, frame);
          each.tracker.trackGroups();
        });
        each.nextId = Group::currentId;
      }
    }
    return runs.front().lines;
  };
  EXPECT_TRUE(run({1}) == run({1, 2, 4}));
}

INSTANTIATE_TEST_SUITE_P(Scenes, FastFormulation,
                         testing::Values(Case{"Plain", false, false}, Case{"Odd", true, false},
                                         Case{"ReusedIds", false, true},
                                         Case{"OddAndReused", true, true},
                                         Case{"IdsTurnNegative", true, false, 2147483500}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
