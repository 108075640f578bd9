#pragma once

#include "tracker/geometry/Converter.h"

#include <kel/kelAbstractDataCalibration.h>

/// A camera that sees a metre of the ground as a pixel, so that positions can be read off the
/// image. The way back is another one, slanted, in which no two edges of a person look equally
/// long.
class FlatCamera : public kelAbstractDataCalibration {
 public:
  explicit FlatCamera(const cv::Point3d& position = {}) : m_position(position) {}

  cv::Point3d imageToWorld(const cv::Point2d& imagePoint, double height) const override {
    return {imagePoint.x, imagePoint.y, height};
  }
  cv::Point2d worldToImage(const cv::Point3d& p) const override {
    return {100 * p.x + 50 * p.y + 16 * p.x * p.y, 300 - 20 * p.y - 100 * p.z};
  }
  cv::Point3d getPosition() const override { return m_position; }

 private:
  cv::Point3d m_position;
};

/// Gives the converter a calibration for the length of a scope.
class CalibrationGuard {
 public:
  explicit CalibrationGuard(const QSharedPointer<kelAbstractDataCalibration>& calibration) {
    Converter::init(calibration);
  }
  CalibrationGuard(const CalibrationGuard&) = delete;
  CalibrationGuard& operator=(const CalibrationGuard&) = delete;
  ~CalibrationGuard() { Converter::calibration.clear(); }
};
