#include "tracker/display/GroupColor.h"

#include <QtGlobal>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

QT_WARNING_DISABLE_DEPRECATED

constexpr uint anySeed = 12345;

/// Sees which colours are taken and takes colours itself.
class Palette : public GroupColor {
 public:
  using GroupColor::currentQtColorIndex;
  using GroupColor::stdColors;
  using GroupColor::use;
};

class GroupColors : public testing::Test {
 protected:
  void SetUp() override { GroupColor::resetColors(); }
  void TearDown() override { GroupColor::resetColors(); }

  static void exhaustPalette() {
    for (std::size_t i = 0; i < Palette::stdColors.size(); ++i) {
      GroupColor::getNewColor();
    }
  }

  /// The first colours that the generator gives after the seed.
  static std::vector<QColor> firstRandomColors(std::size_t count) {
    exhaustPalette();
    qsrand(anySeed);
    std::vector<QColor> colors(count);
    std::generate(colors.begin(), colors.end(), GroupColor::getNewColor);
    GroupColor::resetColors();
    return colors;
  }

  /// The next colour when the palette and the first random colours are taken.
  static QColor colorAfter(const std::vector<QColor>& randomColors, std::size_t taken) {
    exhaustPalette();
    for (std::size_t i = 0; i < taken; ++i) {
      Palette::use(randomColors[i]);
    }
    qsrand(anySeed);
    return GroupColor::getNewColor();
  }
};

TEST_F(GroupColors, FollowThePaletteAndThenDiffer) {
  for (const QColor expected :
       {Qt::red, Qt::green, Qt::blue, Qt::cyan, Qt::magenta, Qt::yellow, Qt::darkRed, Qt::darkGreen,
        Qt::darkBlue, Qt::darkCyan, Qt::darkMagenta, Qt::darkYellow}) {
    EXPECT_EQ(GroupColor::getNewColor(), expected);
  }
  const QColor random = GroupColor::getNewColor();
  EXPECT_NE(random, GroupColor::getNewColor());
  EXPECT_EQ(random.alpha(), 255);
}

TEST_F(GroupColors, StayRandomOnceAColorOfThePaletteIsTaken) {
  Palette::use(Qt::red);
  EXPECT_NE(GroupColor::getNewColor(), QColor(Qt::red));
  EXPECT_NE(GroupColor::getNewColor(), QColor(Qt::green));
  EXPECT_EQ(Palette::currentQtColorIndex, 0U);
}

TEST_F(GroupColors, OnlyTheNinthTryStartsOver) {
  const std::vector<QColor> colors = firstRandomColors(10);
  EXPECT_EQ(colorAfter(colors, 7), colors[7]);

  GroupColor::resetColors();
  EXPECT_EQ(colorAfter(colors, 8), QColor(Qt::red));
  EXPECT_EQ(GroupColor::getNewColor(), QColor(Qt::green));

  GroupColor::resetColors();
  EXPECT_EQ(colorAfter(colors, 9), colors[9]);

  GroupColor::resetColors();
  EXPECT_EQ(colorAfter(colors, 10), colors[9]);  // although it is taken
}

}  // namespace
