#include "host/pictures/GroundTurn.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace grouptracker {

namespace {

/// People in front of a camera at the origin, which looks along y from 5 m above the ground; those
/// to the right stand farther away. Their places are told in axes that are turned by an angle, and
/// mirrored on request.
GroundTurn turnSeenFrom(double angle, bool isMirrored) {
  GroundTurn turn;
  std::uint32_t id = 0;
  for (double x = -4.0; x <= 4.0; x += 2.0) {
    for (double y = 12.0 + x; y <= 20.0 + 2.0 * x; y += 2.5) {
      const double place = isMirrored ? -x : x;
      const cv::Point2f told(static_cast<float>(std::cos(angle) * place - std::sin(angle) * y),
                             static_cast<float>(std::sin(angle) * place + std::cos(angle) * y));
      const auto pixels = [y](double metres) { return static_cast<int>(2000.0 * metres / y); };
      const int height = pixels(1.7);
      turn.add({++id, Sighting{told, {1000 + pixels(x) - 10, pixels(5.0) - height, 20, height}}});
    }
  }
  return turn;
}

TEST(GroundTurn, PutsTheGroundAsTheCameraSeesIt) {
  for (const bool isMirrored : {false, true}) {
    for (const double degrees : {0.0, 70.0, 180.0, -120.0}) {
      const double angle = degrees * std::numbers::pi / 180.0;
      const auto matrix = turnSeenFrom(angle, isMirrored).matrix();
      ASSERT_TRUE(matrix);
      const cv::Vec2f right = *matrix * cv::Vec2f(static_cast<float>(std::cos(angle)),
                                                  static_cast<float>(std::sin(angle)));
      const cv::Vec2f away = *matrix * cv::Vec2f(static_cast<float>(-std::sin(angle)),
                                                 static_cast<float>(std::cos(angle)));
      EXPECT_NEAR(right[0], isMirrored ? -1.0 : 1.0, 0.02) << degrees;
      EXPECT_NEAR(away[1], 1.0, 0.02) << degrees;
      EXPECT_NEAR(cv::determinant(*matrix), isMirrored ? -1.0 : 1.0, 1e-5);
    }
  }
}

TEST(GroundTurn, IsFoundByPlacesWhereEverybodyIsOfOneSize) {
  GroundTurn turn;  // by a camera that looks straight down, whose columns follow y and rows x
  for (int x = 0; x < 4; ++x) {
    for (int y = 0; y < 4; ++y) {
      const cv::Point2f place(static_cast<float>(x), static_cast<float>(y));
      turn.add({1, Sighting{place, {50 * y, 50 * x, 20, 20}}});
    }
  }
  const auto matrix = turn.matrix();
  ASSERT_TRUE(matrix);
  EXPECT_LT(cv::norm(*matrix, cv::Matx22f(0.0F, 1.0F, -1.0F, 0.0F), cv::NORM_INF), 1e-5);
}

TEST(GroundTurn, IsUnknownWithoutBoxesAndWithoutBreadth) {
  GroundTurn noBoxes;
  GroundTurn oneLine;
  for (int i = 0; i < 20; ++i) {
    const auto at = static_cast<float>(i);
    noBoxes.add({1, Sighting{{at, at * at}, {}}});
    oneLine.add({1, Sighting{{at, 2.0F * at}, {10 * i, 200 - 5 * i, 10, 30}}});
  }
  EXPECT_FALSE(noBoxes.matrix());
  EXPECT_FALSE(oneLine.matrix());
}

}  // namespace

}  // namespace grouptracker
