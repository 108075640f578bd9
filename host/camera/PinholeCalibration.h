#pragma once

#include "host/camera/HostCalibration.h"

#include <opencv2/core/matx.hpp>

#include <vector>

namespace grouptracker {

/// A pinhole camera with lens distortion: image points in pixels (y downwards), scene points in
/// metres (z up). The rotation and translation lead from the scene to the camera. Image points
/// whose ray is parallel to the asked plane give infinite coordinates; rays that leave the plane
/// behind the camera give the point where they would have met it.
class PinholeCalibration : public HostCalibration {
 public:
  /// `distortion` has 0, 4, 5 or 8 coefficients (k1, k2, p1, p2, k3, k4, k5, k6).
  PinholeCalibration(const cv::Matx33d& cameraMatrix, std::vector<double> distortion,
                     const cv::Vec3d& rotationVector, const cv::Vec3d& translation);

  cv::Point3d imageToWorld(const cv::Point2d& imagePoint, double height) const override;
  cv::Point2d worldToImage(const cv::Point3d& scenePoint) const override;
  cv::Point3d getPosition() const override { return m_position; }
  std::vector<CalibrationNode> nodes() const override;

 private:
  cv::Matx33d m_cameraMatrix;
  std::vector<double> m_distortion;
  cv::Vec3d m_rotationVector;
  cv::Matx33d m_rotation;
  cv::Vec3d m_translation;
  cv::Point3d m_position;
};

}  // namespace grouptracker
