#pragma once

#include <kel/BoundingBox3D.h>
#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>
#include <opencv2/core/types.hpp>

/// Places what is seen in the image in the scene, through the camera's calibration.
///
/// Image boxes and points are in pixels, y down; scene points and boxes in metres, z up, the ground
/// at z = 0. All conversions of the program share one calibration, which is set once before the
/// first frame; except for `computePosition2D` they must not be called without one. A camera right
/// above the foot point gives an infinite or undefined height, which is passed on.
class Converter {
 public:
  static QSharedPointer<kelAbstractDataCalibration> calibration;  ///< null until `init`

  Converter() = default;
  virtual ~Converter() = default;

  /// Sets the calibration, replacing an earlier one; always true.
  static bool init(const QSharedPointer<kelAbstractDataCalibration>& newCalibration);

  /// The reference point of an image box: its middle.
  static cv::Point2f computePosition2D(const cv::Rect& rect);
  /// The ground point seen at the reference point: `point`, or else that of the box.
  static cv::Point3f computePosition3D(const cv::Rect& rect, const cv::Point2f* point = nullptr);
  /// The scene box of an image box: a square footprint around the position, as wide as the box is
  /// seen there, and upwards as far as the box reaches below its reference point. Reference point
  /// and position are computed when not given.
  static BoundingBox3D computeBoundingBox3D(const cv::Rect& rect,
                                            const cv::Point2f* point = nullptr,
                                            const cv::Point3f* position = nullptr);
};
