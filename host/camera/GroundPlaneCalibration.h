#pragma once

#include "host/camera/HostCalibration.h"

#include <opencv2/core.hpp>

namespace grouptracker {

/// A camera of which only the view of the ground is known: a homography from image points (column,
/// row, pixels) to ground points (x, y, metres), and where the camera stands. Points above the
/// ground are cast onto it along the line from the camera.
class GroundPlaneCalibration : public HostCalibration {
 public:
  /// The homography must be invertible and the camera must not lie on the ground.
  GroundPlaneCalibration(const cv::Matx33d& imageToGround, const cv::Point3d& cameraPosition);

  /// The ground point moved towards the camera until it has the height.
  cv::Point3d imageToWorld(const cv::Point2d& imagePoint, double height) const override;
  cv::Point2d worldToImage(const cv::Point3d& scenePoint) const override;
  cv::Point3d getPosition() const override { return m_position; }
  std::vector<CalibrationNode> nodes() const override;

 private:
  cv::Matx33d m_imageToGround;
  cv::Matx33d m_groundToImage;
  cv::Point3d m_position;
};

}  // namespace grouptracker
