#pragma once

#include "host/camera/PinholeCalibration.h"

#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <vector>

namespace grouptracker {

/// The camera of simulated scenes: 7 m above the ground, looking along y and down, x to its right.
/// The origin is the ground below the camera. Metres, and pixels with y downwards.
class SimulatedView {
 public:
  static const cv::Size imageSize;
  static const cv::Matx33d cameraMatrix;
  static const cv::Vec3d rotation;          ///< vector, world to camera
  static const cv::Vec3d translation;       ///< metres, world to camera
  static constexpr double farthest = 40.0;  ///< m along y; people beyond are too small to be seen

  SimulatedView()
      : m_camera(QSharedPointer<PinholeCalibration>::create(cameraMatrix, std::vector<double>(),
                                                            rotation, translation)) {}

  QSharedPointer<PinholeCalibration> camera() const { return m_camera; }
  cv::Point2d project(const cv::Point3d& point) const { return m_camera->worldToImage(point); }
  /// Whether a person who stands there is in the image from head to foot.
  bool sees(const cv::Point2d& foot) const;

 private:
  QSharedPointer<PinholeCalibration> m_camera;
};

}  // namespace grouptracker
