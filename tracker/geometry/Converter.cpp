#include "tracker/geometry/Converter.h"

#include <cmath>

QSharedPointer<kelAbstractDataCalibration> Converter::calibration;

namespace {

/// The ground point seen at an image point, rounded to single precision.
cv::Point3f groundPoint(float column, float row) {
  constexpr double groundHeight = 0.0;  // metres
  const cv::Point3d point = Converter::calibration->imageToWorld({column, row}, groundHeight);
  return {static_cast<float>(point.x), static_cast<float>(point.y), static_cast<float>(point.z)};
}

double length(double x, double y) {
  return std::sqrt(x * x + y * y);
}

/// Metres from the position up to the top of what is seen above the foot point: the sight line
/// through the reference point rises from the foot towards the camera.
float heightAbove(const cv::Point3f& foot, const cv::Point3f& position) {
  const cv::Point3d camera = Converter::calibration->getPosition();
  const double footToPosition =
      length(static_cast<double>(foot.x) - position.x, static_cast<double>(foot.y) - position.y);
  const double footToCamera = length(foot.x - camera.x, foot.y - camera.y);
  const auto ratio = static_cast<float>(footToPosition / footToCamera);
  return static_cast<float>(ratio * camera.z);
}

/// Metres on the ground between two points, whose coordinates are subtracted in single precision.
float groundRadius(const cv::Point3f& a, const cv::Point3f& b) {
  const float dx = a.x - b.x;
  const float dy = a.y - b.y;
  return static_cast<float>(length(dx, dy));
}

}  // namespace

bool Converter::init(const QSharedPointer<kelAbstractDataCalibration>& newCalibration) {
  calibration = newCalibration;
  return true;
}

cv::Point2f Converter::computePosition2D(const cv::Rect& rect) {
  return {static_cast<float>(rect.x + rect.width * 0.5),
          static_cast<float>(rect.y + rect.height * 0.5)};
}

cv::Point3f Converter::computePosition3D(const cv::Rect& rect, const cv::Point2f* point) {
  const cv::Point2f reference = point != nullptr ? *point : computePosition2D(rect);
  return groundPoint(reference.x, reference.y);
}

BoundingBox3D Converter::computeBoundingBox3D(const cv::Rect& rect, const cv::Point2f* point,
                                              const cv::Point3f* position) {
  const cv::Point2f reference = point != nullptr ? *point : computePosition2D(rect);
  const cv::Point3f base = position != nullptr ? *position : computePosition3D(rect, point);

  const cv::Point3f foot = groundPoint(reference.x, static_cast<float>(rect.y + rect.height));
  const float height = heightAbove(foot, base);

  const int halfWidth = rect.width / 2;  // whole pixels
  const cv::Point3f side = groundPoint(reference.x + static_cast<float>(halfWidth), reference.y);
  const float radius = groundRadius(side, base);

  return {base.x + radius, base.y + radius, base.z + height,
          base.x - radius, base.y - radius, base.z};
}
