#include "tests/support/process/FlatCamera.h"
#include "tests/support/process/Printed.h"
#include "tests/support/process/ProcessDriver.h"
#include "tests/support/process/RandomScene.h"
#include "tests/support/process/StaticsGuard.h"
#include "tracker/geometry/Util.h"
#include "tracker/plugin/GroupTrackerProcessGroupTrackerPrivate.h"
#include "tracker/tracking/GroupTracker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace {

struct Case {
  std::string name;
  bool clusters;
  bool hasOddities;
  bool reusesIds;
};
void PrintTo(const Case& row, std::ostream* out) {
  *out << row.name;
}

/// The mobiles that are current in a frame.
std::set<unsigned int> currentIn(const ProcessDriver::Actors& actors) {
  std::set<unsigned int> idents;
  for (const auto& actor : actors) {
    if (!actor->getLinkedPhysicalObjectList().empty()) {
      idents.insert(actor->getLinkedPhysicalObjectList().back()->getIdent());
    }
  }
  return idents;
}

class RandomScenes : public testing::TestWithParam<Case> {
 protected:
  /// A whole run; what is seen in it.
  struct Run {
    std::string printed;
    std::vector<ProcessDriver::Actors> input;
    std::vector<ProcessDriver::Actors> groups;

    std::string text() const {
      std::string lines;
      for (const auto& actors : groups) {
        lines += toText(actors) + "--\n";
      }
      return lines;
    }
  };

  static Run run(unsigned int seed, bool diagnostics = true) {
    const StaticsGuard guard;
    setTestParameters();
    Util::temporalWinSize = 1 + seed % 5 + (GetParam().clusters ? 1 : 0);
    GroupTracker::maxFrames = 5 + seed % 20;
    GroupTrackerProcessGroupTrackerPrivate::useClustering = GetParam().clusters;
    ProcessDriver driver({{"mobileDump", false}, {"diagnostics", diagnostics}});
    driver.process().setCalibration(QSharedPointer<FlatCamera>::create(cv::Point3d(6, -5, 8)));
    driver.process().setSceneContext(QSharedPointer<kelDataContext>::create(
        std::list<ContextElement>{{"zone", "rectangle", {{0, 0, 0}, {12, 12, 0}}}}));
    RandomScene scene({seed, 6 + seed, GetParam().hasOddities, GetParam().reusesIds});
    Run result;
    result.printed = printed([&] {
      for (int frame = 1; frame <= 45; ++frame) {
        result.input.push_back(scene.next());
        result.groups.push_back(driver.step(result.input.back()));
      }
    });
    // The rest is named by the folder of the parameters.
    result.printed.erase(0, result.printed.find('\n'));
    return result;
  }

  /// Whom a frame's groups show was seen in the frame that they are about; and he is in one group
  /// only, unless his id was declared again in the meantime.
  static void expectMembersSeen(const Run& run, std::size_t delay) {
    for (std::size_t frame = delay; frame < run.groups.size(); ++frame) {
      const auto seen = currentIn(run.input[frame - delay]);
      std::multiset<unsigned int> shown;
      for (const auto& group : run.groups[frame]) {
        if (group->getSpecificProperties().value("Visible").type() != QVariant::Bool) {
          continue;
        }
        for (const auto& mobile : group->getLinkedPhysicalObjectList()) {
          if (!GetParam().reusesIds || shown.count(mobile->getIdent()) == 0) {
            shown.insert(mobile->getIdent());
          }
        }
      }
      EXPECT_TRUE(std::includes(seen.begin(), seen.end(), shown.begin(), shown.end()))
          << "frame " << frame + 1;
    }
  }
};

TEST_P(RandomScenes, GiveSeenMembersAndTheSameEveryTime) {
  std::size_t visible = 0;
  for (unsigned int seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE(seed);
    const Run first = run(seed);
    const Run second = run(seed);
    EXPECT_EQ(first.text(), second.text());
    EXPECT_TRUE(first.printed == second.printed);
    const Run silent = run(seed, false);
    EXPECT_EQ(first.text(), silent.text());
    EXPECT_EQ(silent.printed, "");
    expectMembersSeen(first, 1 + seed % 5 + (GetParam().clusters ? 1 : 0));
    visible += first.text().find("Visible true") != std::string::npos ? 1 : 0;
  }
  EXPECT_EQ(visible, 6U) << "groups are found in every scene";
}

INSTANTIATE_TEST_SUITE_P(Kinds, RandomScenes,
                         testing::Values(Case{"Pairs", false, false, false},
                                         Case{"OddPairs", false, true, false},
                                         Case{"ReusedPairs", false, true, true},
                                         Case{"Clusters", true, false, false},
                                         Case{"OddClusters", true, true, false},
                                         Case{"ReusedClusters", true, true, true}),
                         [](const auto& row) { return row.param.name; });

TEST(LongScene, KeepsNoMoreMobilesThanItRemembers) {
  const StaticsGuard guard;
  setTestParameters();
  ProcessDriver driver({{"mobileDump", false}, {"diagnostics", false}});
  RandomScene::Options options;
  options.people = 8;
  options.memory = 40;
  RandomScene scene(options);
  std::vector<QWeakPointer<kelDataLinkedPhysicalObject>> mobiles;
  for (int frame = 1; frame <= 600; ++frame) {
    const auto& actors = scene.next();
    for (const auto& actor : actors) {
      mobiles.emplace_back(actor->getLinkedPhysicalObjectList().back());
    }
    driver.step(actors);
  }
  std::erase_if(mobiles, [](const auto& mobile) { return mobile.isNull(); });
  const std::size_t atOnce = options.people + 3;   // the last party may be larger
  const std::size_t frames = options.memory + 30;  // the oldest actor's list reaches further back
  EXPECT_LE(mobiles.size(), atOnce * frames);
}

}  // namespace
