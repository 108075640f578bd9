#include "host/pictures/GroupColours.h"
#include "host/pictures/GroupPalette.h"

#include <gtest/gtest.h>

#include <set>

namespace grouptracker {

namespace {

RunGroup groupAt(std::uint32_t id, float x, float y) {
  RunGroup group;
  group.id = id;
  group.isVisible = true;
  group.position = cv::Point3f(x, y, 0.0F);
  group.members.resize(2);
  return group;
}

RunStep stepWith(std::vector<RunGroup> groups) {
  RunStep step;
  step.groups = std::move(groups);
  return step;
}

TEST(GroupPalette, IsToldApartByEverybody) {
  constexpr double clearly = 15.0;
  for (std::size_t one = 0; one < paletteSize; ++one) {
    for (std::size_t other = 0; other < one; ++other) {
      EXPECT_GT(paletteDifference(one, other), clearly)
          << paletteText(one) << " and " << paletteText(other);
    }
  }
  EXPECT_EQ(paletteText(0), "#0072b2");
  EXPECT_EQ(paletteColour(0), cv::Scalar(0xB2, 0x72, 0x00));
}

TEST(GroupColours, AreKeptAndNeverThoseOfANeighbour) {
  GroupColours colours;
  std::vector<RunGroup> groups;
  for (std::uint32_t id = 0; id < paletteSize; ++id) {
    groups.push_back(groupAt(id, 3.0F * static_cast<float>(id), 0.0F));
  }
  colours.add(stepWith(groups));
  std::set<std::size_t> taken;
  for (const auto& [group, colour] : colours.all()) {
    taken.insert(colour);
  }
  EXPECT_EQ(taken.size(), paletteSize) << "every colour once while there are enough";

  // Later ones have to share, with somebody far away.
  const std::size_t before = colours.indexOf(12);
  groups.push_back(groupAt(20, 36.0F, 1.0F));
  groups.front().position->x = 36.0F;  // moves, and keeps its colour
  colours.add(stepWith(groups));
  EXPECT_EQ(colours.indexOf(12), before);
  for (const std::uint32_t neighbour : {0U, 10U, 11U, 12U}) {
    EXPECT_NE(colours.indexOf(20), colours.indexOf(neighbour));
  }
}

TEST(GroupColours, OfAGroupThatJustEndedAreNotThoseOfTheNext) {
  GroupColours colours;
  colours.add(stepWith({groupAt(1, 0.0F, 0.0F)}));
  colours.add(stepWith({groupAt(2, 0.0F, 0.0F)}));
  EXPECT_NE(colours.indexOf(1), colours.indexOf(2));
}

}  // namespace

}  // namespace grouptracker
