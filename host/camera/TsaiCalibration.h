#pragma once

#include "host/camera/HostCalibration.h"

#include <opencv2/core/matx.hpp>

namespace grouptracker {

/// The numbers of R. Tsai's camera model ("A versatile camera calibration technique for
/// high-accuracy 3D machine vision metrology", IEEE Journal of Robotics and Automation, 1987) in
/// its own units: millimetres, radians and, for the centre, pixels.
struct TsaiCamera {
  double dpx = 0.0;     ///< width of a pixel on the sensor
  double dpy = 0.0;     ///< height of a pixel on the sensor
  double focal = 0.0;   ///< focal length
  double kappa1 = 0.0;  ///< radial distortion, 1 / mm²
  double cx = 0.0;      ///< centre column
  double cy = 0.0;      ///< centre row
  double sx = 1.0;      ///< scale of the columns
  cv::Vec3d rotation;   ///< angles about x, y and z, applied in this order
  cv::Vec3d translation;
};

/// A camera of that model: image points in pixels, scene points in metres. Scene and sensor meet by
/// Xc = R X + t and Xu = focal Xc / Zc; the undistorted Xu is Xd (1 + kappa1 r²) of the distorted
/// Xd, whose pixel is sx Xd / dpx + cx (rows alike, without sx).
class TsaiCalibration : public HostCalibration {
 public:
  /// The pixels' sizes, the focal length and sx must not be zero.
  explicit TsaiCalibration(const TsaiCamera& camera);

  cv::Point3d imageToWorld(const cv::Point2d& imagePoint, double height) const override;
  cv::Point2d worldToImage(const cv::Point3d& scenePoint) const override;
  cv::Point3d getPosition() const override { return m_position; }
  std::vector<CalibrationNode> nodes() const override;

 private:
  TsaiCamera m_camera;
  cv::Matx33d m_rotation;
  cv::Point3d m_position;  ///< metres
};

}  // namespace grouptracker
