#include "tests/support/process/FlatCamera.h"

#include <gtest/gtest.h>

namespace {

TEST(Converter, BoxRisesWithTheSightLineAndIsSquare) {
  const CalibrationGuard guard(QSharedPointer<FlatCamera>::create(cv::Point3d(2.5, 5.0, 10.0)));
  const cv::Rect rect(0, 0, 5, 2);  // seen at (2.5, 1), a metre above its foot; half of 5 is 2

  const cv::Point3f position = Converter::computePosition3D(rect);
  const BoundingBox3D box = Converter::computeBoundingBox3D(rect);

  EXPECT_EQ(position, cv::Point3f(2.5F, 1.0F, 0.0F));
  // A third, rounded to single precision, of the camera's height: not 3.33333325.
  EXPECT_EQ(box, (BoundingBox3D{4.5F, 3.0F, 3.33333349F, 0.5F, -1.0F, 0.0F}));
}

TEST(Converter, GivenPointAndPositionReplaceThoseOfTheBox) {
  const CalibrationGuard guard(QSharedPointer<FlatCamera>::create(cv::Point3d(4.0, 12.0, 10.0)));
  const cv::Rect rect(0, 0, 4, 2);
  const cv::Point2f point(4.0F, 1.5F);
  const cv::Point3f position(6.0F, 5.5F, 0.5F);

  EXPECT_EQ(Converter::computePosition3D(rect, &point), cv::Point3f(4.0F, 1.5F, 0.0F));
  // Foot (4, 2): half a metre to the point, ten metres to the camera. Radius from (6, 1.5).
  EXPECT_EQ(Converter::computeBoundingBox3D(rect, &point),
            (BoundingBox3D{6.0F, 3.5F, 0.5F, 2.0F, -0.5F, 0.0F}));
  const BoundingBox3D box = Converter::computeBoundingBox3D(rect, &point, &position);
  EXPECT_EQ(box.b0, 10.0F);
  EXPECT_EQ(box.b4, 1.5F);
  EXPECT_EQ(box.b5, 0.5F);
}

}  // namespace
