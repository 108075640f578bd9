#include "tests/support/process/FlatCamera.h"
#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Util.h"

#include <gtest/gtest.h>
#include <opencv2/core/core_c.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

/// A box on the ground around (x, y), metres.
BoundingBox3D boxAt(float x, float y, float width, float height) {
  return {x + width / 2, y + width / 2, height, x - width / 2, y - width / 2, 0.0F};
}

struct SmartDistance {
  std::string name;
  BoundingBox3D boxA;
  cv::Rect rectA;
  BoundingBox3D boxB;
  cv::Rect rectB;
  double expected;
  bool calibrated = true;
};
void PrintTo(const SmartDistance& row, std::ostream* out) {
  *out << row.name;
}

class Distance3Dsmart : public testing::TestWithParam<SmartDistance> {};

TEST_P(Distance3Dsmart, IsAsExpected) {
  const SmartDistance& row = GetParam();
  const CalibrationGuard guard(row.calibrated ? QSharedPointer<FlatCamera>::create()
                                              : QSharedPointer<FlatCamera>());
  EXPECT_EQ(Util::distance3Dsmart(row.boxA, row.rectA, row.boxB, row.rectB), row.expected);
}

// The tall rectangle (0, 0, 10, 40) shows people at (5, 10) and (5, 30).
const cv::Rect tallRect(0, 0, 10, 40);
const cv::Rect anyRect(70, 70, 4, 8);
const BoundingBox3D tallBox = boxAt(100, 100, 1, 3);

INSTANTIATE_TEST_SUITE_P(
    Rows, Distance3Dsmart,
    testing::Values(
        SmartDistance{"Short", boxAt(0, 0, 1, 1.7F), anyRect, boxAt(3, 4, 1, 2.3F), anyRect, 5.0},
        SmartDistance{"FirstWide", boxAt(0, 0, 1.5F, 1), anyRect, boxAt(9, 9, 2, 1), anyRect, 1.5},
        SmartDistance{"SecondWide", boxAt(0, 0, 1, 1), anyRect, boxAt(9, 9, 2, 1), anyRect, 2.0},
        SmartDistance{"FirstTallUpperHalfNearer", tallBox, tallRect, boxAt(5, 12, 2, 1), anyRect,
                      2.0},
        SmartDistance{"SecondTallLowerHalfNearer", boxAt(5, 33, 2, 1), anyRect, tallBox, tallRect,
                      3.0},
        SmartDistance{"BothTallSplitsTheFirst", tallBox, tallRect, boxAt(5, 6, 1, 3), anyRect, 4.0},
        SmartDistance{"TallFromThresholdOn", boxAt(9, 9, 1, 2.4F), tallRect, boxAt(5, 9, 1, 1),
                      anyRect, 1.0},
        SmartDistance{
            "HalfPixelDownToEven", tallBox, {0, 0, 10, 5}, boxAt(5, 1, 1, 1), anyRect, 0.0},
        SmartDistance{"HalfPixelUpToEven", tallBox, {0, 0, 10, 7}, boxAt(5, 2, 1, 1), anyRect, 0.0},
        SmartDistance{"TallWithoutCalibration", tallBox, tallRect, boxAt(103, 104, 1, 1), anyRect,
                      5.0, false}),
    [](const auto& row) { return row.param.name; });

TEST(Util, HmoduloTakesNumbersOfBothSigns) {
  EXPECT_EQ(Util::hmodulo(-1, 5), 4);
  EXPECT_EQ(Util::hmodulo(-11, 5), 4);
  EXPECT_EQ(Util::hmodulo(12, 5), 2);
  EXPECT_EQ(Util::hmodulo(5, 5), 0);
}

TEST(Util, CentersAndMotionsAreSinglePrecision) {
  // In double the height would be 1.46 and the middle 0.769999981.
  EXPECT_EQ(Util::getCenter3D({3, 5, 1.5F, 1, 1, 0.04F}), cv::Point3f(2, 3, 0.770000041F));
  EXPECT_EQ(Util::baseCenter3D({3, 5, 1.5F, 1, 1, 0.04F}), cv::Point3f(2, 3, 0));
  // The upper corner may come second.
  EXPECT_EQ(Util::motionVector3D({1, 1, 0, 1, 1, 2}, {4, 5, 6, 4, 5, 2}), cv::Point3f(3, 4, 1));
  EXPECT_EQ(Util::motionVector2D({0, 0, 3, 5}, {10, 20, 4, 4}), cv::Point2f(10.5F, 19.5F));
}

TEST(Util, DistanceBetweenBoxesIgnoresHeights) {
  EXPECT_EQ(Util::distance3D(boxAt(0, 0, 1, 1), boxAt(0, 0, 2, 9)), 0.0);
  EXPECT_EQ(Util::distance3D(cv::Point3f(0, 0, 1), cv::Point3f(2, 3, 7)), 7.0);
  EXPECT_EQ(Util::distance2D({0, 0, 10, 10}, {10, 0, 10, 10}), 10.0);
}

TEST(Util, StandardPersonAreaCountsTheLargerSide) {
  const CalibrationGuard guard(QSharedPointer<FlatCamera>::create());
  Util::personWidth = 0.5;
  Util::personDepth = 0.25;
  Util::personHeight = 1.75;
  // front 67 * 175, top 67 * 5; sides 15 * 175 and 17 * 175, cut off from 15.5 and 17.5
  EXPECT_EQ(Util::standardPerson2DArea({1, 2, 9}), 11725 + 335 + 2975);
  Util::personWidth = Util::personDepth = Util::personHeight = 0.0;
}

TEST(Util, PerimeterIsClosed) {
  CvMemStorage* storage = cvCreateMemStorage();
  CvSeq* points = cvCreateSeq(CV_32SC2, sizeof(CvSeq), sizeof(CvPoint), storage);
  EXPECT_EQ(Util::perimeter(points), 0.0);
  for (CvPoint point : {cvPoint(0, 0), cvPoint(0, 10), cvPoint(10, 10), cvPoint(10, 0)}) {
    cvSeqPush(points, &point);
  }
  EXPECT_EQ(Util::perimeter(points), 40.0);
  cvReleaseMemStorage(&storage);
}

TEST(Util, PrintsBoxes) {
  testing::internal::CaptureStdout();
  Util::printBbox(BoundingBox3D{2, 3, 1.7F, 1.5F, 2, 0});
  Util::printBbox(cv::Rect(1, -2, 3, 4));
  Util::printI(-7);
  Diagnostics::flush();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "bottom: (1.500000, 2.000000, 0.000000),\n"
            "top: (2.000000, 3.000000, 1.700000),\n"
            "width and height: 0.500000 1.700000\n"
            "x 1, y -2\n"
            "width 3, height 4\n"
            "-7 ");
}

}  // namespace
