#pragma once

#include "host/camera/HostCalibration.h"

#include <opencv2/core/matx.hpp>

#include <istream>
#include <string>

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

/// Reads a camera of Tsai's model from XML:
///
///     <Camera name="View_001">
///       <Geometry width="768" height="576" dpx="5.127e-03" dpy="4.65e-03" .../>
///       <Intrinsic focal="5.55" kappa1="5.11e-03" cx="324.2" cy="282.6" sx="1.09"/>
///       <Extrinsic tx="828.7" ty="-3175.5" tz="35469.3" rx="2.04" ry="-0.893" rz="-0.431"/>
///     </Camera>
///
/// in millimetres and radians. Broken XML, missing elements and attributes and numbers that make no
/// camera are an `InputError`.
TsaiCamera readTsaiCamera(std::istream& in, const std::string& name);

}  // namespace grouptracker
