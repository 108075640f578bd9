#include "host/camera/BoxLifter.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double farthestPixel = 1e6;  // beyond, a projection means that the camera cannot see it

bool isFinite(const cv::Point3f& point) {
  return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

/// The z at which the line of sight through an image point passes the vertical through the foot.
double sightedHeight(const kelAbstractDataCalibration& camera, const cv::Point2d& imagePoint,
                     const cv::Point3f& foot) {
  const cv::Point3d eye = camera.getPosition();
  const cv::Point3d ground = camera.imageToWorld(imagePoint, 0.0);
  const cv::Point2d sight(ground.x - eye.x, ground.y - eye.y);
  const cv::Point2d way(foot.x - eye.x, foot.y - eye.y);
  return eye.z * (1.0 - way.dot(sight) / sight.dot(sight));
}

}  // namespace

std::optional<cv::Point3f> liftFoot(const kelAbstractDataCalibration& camera,
                                    const cv::Rect2d& box) {
  const cv::Point2d foot(box.x + box.width / 2.0, box.y + box.height);
  const cv::Point3f ground(camera.imageToWorld(foot, 0.0));
  return isFinite(ground) ? std::optional(ground) : std::nullopt;
}

std::optional<BoundingBox3D> liftBox(const kelAbstractDataCalibration& camera,
                                     const cv::Rect2d& box, const cv::Point3f& foot) {
  const double bottom = box.y + box.height;
  const cv::Point3d left = camera.imageToWorld(cv::Point2d(box.x, bottom), 0.0);
  const cv::Point3d right = camera.imageToWorld(cv::Point2d(box.x + box.width, bottom), 0.0);
  const auto half = static_cast<float>(std::hypot(right.x - left.x, right.y - left.y) / 2.0);
  const cv::Point2d head(box.x + box.width / 2.0, box.y);
  const auto top = static_cast<float>(sightedHeight(camera, head, foot));
  if (!std::isfinite(half) || !std::isfinite(top)) {
    return std::nullopt;
  }
  return BoundingBox3D{foot.x + half, foot.y + half, top, foot.x - half, foot.y - half, foot.z};
}

cv::Rect projectBox(const kelAbstractDataCalibration& camera, const BoundingBox3D& body) {
  cv::Point2d low(farthestPixel, farthestPixel);
  cv::Point2d high(-farthestPixel, -farthestPixel);
  for (const float x : {body.b0, body.b3}) {
    for (const float y : {body.b1, body.b4}) {
      for (const float z : {body.b2, body.b5}) {
        const cv::Point2d seen = camera.worldToImage(cv::Point3d(x, y, z));
        if (!(std::abs(seen.x) < farthestPixel && std::abs(seen.y) < farthestPixel)) {
          return {};
        }
        low = {std::min(low.x, seen.x), std::min(low.y, seen.y)};
        high = {std::max(high.x, seen.x), std::max(high.y, seen.y)};
      }
    }
  }
  const cv::Point corner(cvFloor(low.x), cvFloor(low.y));
  return {corner, cv::Point(cvCeil(high.x), cvCeil(high.y))};
}

}  // namespace grouptracker
