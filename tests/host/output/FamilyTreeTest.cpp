#include "host/output/FamilyTree.h"
#include "host/output/LineageGraph.h"
#include "tests/support/base/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace grouptracker {

namespace {

using testing::HasSubstr;
using Lanes = std::map<std::uint32_t, int>;

/// A run in which groups live from one frame to another.
class Lives {
 public:
  Lives& group(std::uint32_t id, std::int64_t first, std::int64_t last) {
    for (std::int64_t frame = first; frame <= last; ++frame) {
      RunGroup group;
      group.id = id;
      group.isVisible = true;
      group.members = {{id, 10 * id, std::nullopt}, {id, 10 * id + 1, std::nullopt}};
      step(frame).groups.push_back(group);
    }
    return *this;
  }
  Lives& event(EventKind kind, std::uint32_t group, std::uint32_t other, std::int64_t frame) {
    TrackedEvent event;
    event.kind = kind;
    event.group = group;
    event.other = other;
    step(frame).events.push_back(event);
    return *this;
  }
  template <typename Taker>
  void handTo(Taker take) const {
    for (const auto& [frame, step] : m_steps) {
      take(step);
    }
  }
  Lanes lanes(std::int64_t leastLength = 1) const {
    FamilyTree tree;
    handTo([&](const RunStep& step) { tree.add(step); });
    return tree.lanes(1, [=](std::uint32_t) { return leastLength; });
  }

 private:
  RunStep& step(std::int64_t frame) {
    m_steps[frame].inputFrame = frame;
    return m_steps[frame];
  }

  std::map<std::int64_t, RunStep> m_steps;
};

//  frame   1        10        20
//  lane 0   1--------+==========
//       1   2-------/    4------
//       2  5----   3----
TEST(FamilyTree, KeepsRelativesTogetherAndTheRestBelow) {
  const Lanes lanes = Lives()
                          .group(5, 1, 5)
                          .group(1, 2, 20)
                          .group(2, 2, 9)
                          .group(3, 8, 12)
                          .group(4, 14, 20)
                          .event(EventKind::merged, 1, 2, 10)
                          .lanes();
  EXPECT_EQ(lanes, (Lanes{{1, 0}, {2, 1}, {3, 2}, {4, 1}, {5, 2}}));
}

TEST(FamilyTree, LeavesRoomForLongNames) {
  const Lives lives = Lives().group(1, 1, 3).group(2, 6, 9);
  EXPECT_EQ(lives.lanes(), (Lanes{{1, 0}, {2, 0}}));
  EXPECT_EQ(lives.lanes(20), (Lanes{{1, 0}, {2, 1}}));
}

TEST(LineageGraph, DrawsBarsAlongTimeWithArrowsWhereSomethingHappened) {
  const TempFolder folder;
  LineageGraph graph(folder.path() / "tree.dot");
  Lives()
      .group(1, 0, 99)
      .group(2, 0, 49)
      .group(3, 80, 99)
      .event(EventKind::merged, 1, 2, 50)
      .event(EventKind::split, 3, 1, 80)
      .handTo([&](const RunStep& step) { graph.write(step); });
  graph.finish();
  const std::string text = textOf(folder.path() / "tree.dot");
  // 8 inches for 100 frames.
  EXPECT_THAT(text, HasSubstr("width=8.000, height=0.2, pos=\"4.000,-0.000!\", "
                              "tooltip=\"group 1: frames 0 to 99, persons 10, 11\""));
  EXPECT_THAT(text, HasSubstr("width=4.000, height=0.2, pos=\"2.000,-0.550!\""));
  EXPECT_THAT(text, HasSubstr("e0 [shape=point, width=0.05, color=\"#555555\", "
                              "pos=\"4.000,-0.000!\"];\n  g2:e -> e0 "));
  EXPECT_THAT(text, HasSubstr("pos=\"6.400,-0.000!\"];\n  e1 -> g3:w [style=dashed"));
}

}  // namespace

}  // namespace grouptracker
