#include "host/camera/CameraEstimate.h"

#include "host/camera/Homography.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace grouptracker {

namespace {

constexpr double fallbackHeight = 10.0;  // m
constexpr double lowestCamera = 1.0;     // m; an estimate below is none
constexpr double highestCamera = 200.0;  // m; beyond, the view has no perspective to speak of
constexpr int annotationSlack = 12;      // pixels by which annotated feet may leave the image

const std::array<cv::Size, 8> usualSizes{{{320, 240},
                                          {384, 288},
                                          {640, 480},
                                          {720, 576},
                                          {768, 576},
                                          {1280, 720},
                                          {1920, 1080},
                                          {3840, 2160}}};

cv::Vec3d column(const cv::Matx33d& matrix, int index) {
  return {matrix(0, index), matrix(1, index), matrix(2, index)};
}

/// 1 / f² from the two conditions on the ground's axes in the camera: at a right angle, and of one
/// length; the least-squares answer of both. Not above zero when the view is degenerate.
double inverseSquaredFocalLength(const cv::Vec3d& xAxis, const cv::Vec3d& yAxis) {
  const double p1 = xAxis[0] * yAxis[0] + xAxis[1] * yAxis[1];
  const double p2 =
      xAxis[0] * xAxis[0] + xAxis[1] * xAxis[1] - yAxis[0] * yAxis[0] - yAxis[1] * yAxis[1];
  const double q1 = xAxis[2] * yAxis[2];
  const double q2 = xAxis[2] * xAxis[2] - yAxis[2] * yAxis[2];
  return -(p1 * q1 + p2 * q2) / (p1 * p1 + p2 * p2);
}

/// The camera position by taking the homography apart; none when that gives no sensible camera.
std::optional<cv::Point3d> decompose(const cv::Matx33d& imageToGround, const cv::Size& imageSize) {
  const cv::Matx33d toCentre(1, 0, -imageSize.width / 2.0, 0, 1, -imageSize.height / 2.0, 0, 0, 1);
  const cv::Matx33d groundToImage = toCentre * imageToGround.inv();
  const double inverseSquare =
      inverseSquaredFocalLength(column(groundToImage, 0), column(groundToImage, 1));
  if (!std::isfinite(inverseSquare) || inverseSquare <= 0.0) {
    return std::nullopt;
  }
  const double inverseFocal = std::sqrt(inverseSquare);
  const cv::Matx33d rays = cv::Matx33d::diag({inverseFocal, inverseFocal, 1.0}) * groundToImage;
  const double scale = (cv::norm(column(rays, 0)) + cv::norm(column(rays, 1))) / 2.0;
  const cv::Vec3d xAxis = column(rays, 0) * (1.0 / cv::norm(column(rays, 0)));
  const cv::Vec3d yAxis = column(rays, 1) * (1.0 / cv::norm(column(rays, 1)));
  const cv::Vec3d toOrigin = column(rays, 2) * (1.0 / scale);
  // The ground may be seen mirrored, and the scale's sign is open: the height is positive anyhow.
  const double height = std::abs(xAxis.cross(yAxis).dot(toOrigin));
  if (!(height >= lowestCamera && height <= highestCamera)) {
    return std::nullopt;
  }
  return cv::Point3d(-xAxis.dot(toOrigin), -yAxis.dot(toOrigin), height);
}

}  // namespace

cv::Point3d estimateCameraPosition(const cv::Matx33d& imageToGround, const cv::Size& imageSize) {
  if (const auto position = decompose(imageToGround, imageSize)) {
    return *position;
  }
  const cv::Point2d belowTheImage(imageSize.width / 2.0, 2.0 * imageSize.height);
  const cv::Point2d foot = mapPoint(imageToGround, belowTheImage);
  return {foot.x, foot.y, fallbackHeight};
}

cv::Size guessImageSize(const cv::Point2d& farthest) {
  const double right = std::max(1.0, farthest.x);
  const double bottom = std::max(1.0, farthest.y);
  const auto* const fitting =
      std::find_if(usualSizes.begin(), usualSizes.end(), [&](const cv::Size& size) {
        return right <= size.width + annotationSlack && bottom <= size.height + annotationSlack;
      });
  if (fitting != usualSizes.end()) {
    return *fitting;
  }
  return {static_cast<int>(right), static_cast<int>(bottom)};
}

}  // namespace grouptracker
