#pragma once

#include <kel/kelExport.h>

#include <opencv2/core/types.hpp>

/// A calibrated camera: image points in pixels (y downwards), scene points in metres (z up).
class KEL_EXPORT kelAbstractDataCalibration {
 public:
  kelAbstractDataCalibration() = default;
  kelAbstractDataCalibration(const kelAbstractDataCalibration&) = delete;
  kelAbstractDataCalibration& operator=(const kelAbstractDataCalibration&) = delete;
  virtual ~kelAbstractDataCalibration();

  /// The scene point at `height` metres that is seen at the image point.
  virtual cv::Point3d imageToWorld(const cv::Point2d& imagePoint, double height) const = 0;
  /// The image point at which a scene point is seen.
  virtual cv::Point2d worldToImage(const cv::Point3d& scenePoint) const = 0;
  /// The camera's position in the scene.
  virtual cv::Point3d getPosition() const = 0;
};
