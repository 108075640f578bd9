#include "host/pictures/TopViewPainter.h"

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

namespace grouptracker {

namespace {

constexpr int height = 240;  // pixels

cv::Mat paintWith(TopViewPainter& painter, const std::vector<cv::Point2f>& places) {
  RunStep step;
  std::uint32_t id = 0;
  for (const cv::Point2f& place : places) {
    step.persons.push_back({++id, Sighting{place, {}}});
  }
  RecentPast past(1);
  past.add(step);
  return painter.paint(step, past);
}

/// The pixels of all that is darker than the grid.
int drawn(const cv::Mat& picture) {
  cv::Mat dark;
  cv::inRange(picture, cv::Scalar(), cv::Scalar::all(200), dark);
  return cv::countNonZero(dark);
}

bool areSame(const cv::Mat& one, const cv::Mat& other) {
  return cv::norm(one, other, cv::NORM_INF) == 0.0;
}

// The ground is drawn once, the people anew each time.
TEST(TopViewPainter, LeavesNothingOfAPictureInTheNext) {
  TopViewPainter painter({2 * height, height});
  const cv::Mat crowd = paintWith(painter, {{0, 0}, {7, 3}});
  const cv::Mat empty = paintWith(painter, {});
  EXPECT_GT(drawn(crowd), drawn(empty));
  EXPECT_TRUE(areSame(paintWith(painter, {{0, 0}, {7, 3}}), crowd));
}

TEST(TopViewPainter, DrawsTheGroundAnewWhenMoreOfItIsShown) {
  TopViewPainter grown({2 * height, height});
  paintWith(grown, {{0, 0}, {7, 3}});
  paintWith(grown, {{40, -30}});
  TopViewPainter large({2 * height, height});
  paintWith(large, {{0, 0}, {7, 3}, {40, -30}});
  EXPECT_TRUE(areSame(paintWith(grown, {{5, 5}}), paintWith(large, {{5, 5}})));
}

}  // namespace

}  // namespace grouptracker
