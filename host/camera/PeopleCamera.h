#pragma once

#include "host/camera/GroundPlaneCalibration.h"

#include <QSharedPointer>
#include <opencv2/core.hpp>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace grouptracker {

constexpr double usualBodyHeight = 1.7;  // m, the mean of people who walk about

/// A person's box in the image, pixels.
struct PersonBox {
  std::int64_t step = 0;  ///< of time; equal steps are equal times
  std::uint32_t person = 0;
  cv::Rect2d box;
};

/// A camera above a flat ground as people's boxes show it, and how well they do.
struct PeopleCamera {
  cv::Size imageSize;
  double focalLength = 0.0;     ///< pixels
  double tilt = 0.0;            ///< radians below the horizon
  double roll = 0.0;            ///< radians; positive when the horizon falls to the left
  double height = 0.0;          ///< metres above the ground
  double focalError = 0.0;      ///< standard error of the focal length, as a share of it
  double heightResidual = 0.0;  ///< median difference of boxes' heights, as a share of the height
  double inliers = 0.0;         ///< share of the boxes that fit
  std::size_t boxes = 0;        ///< that were used
  std::size_t people = 0;

  /// The scene's origin is on the ground below the camera, y points to where it looks.
  QSharedPointer<GroundPlaneCalibration> calibration() const;
};

/// Boxes that do not carry the information; the text says why, in a user's words.
class NoPeopleCamera : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Estimates the camera from people who walk upright, for square pixels and the principal point in
/// the middle. Two things are used:
///
/// - How high a box is where its foot stands. Over a flat ground this is close to linear in the
///   foot's place, and zero on the horizon (D. Hoiem, A. Efros, M. Hebert, "Putting Objects in
///   Perspective", IJCV 2008; for walking people F. Lv, T. Zhao, R. Nevatia, "Camera Calibration
///   from Video of a Walking Human", PAMI 2006). It gives horizon and camera height.
/// - That a walker is about as fast in depth as across the view (B. Bose, E. Grimson, "Ground Plane
///   Rectification by Tracking Moving Objects", VS-PETS 2003). It gives the focal length, about
///   which heights alone say little.
///
/// A linear fit by least median of squares comes first, so that occluded, cut and sitting people do
/// not count; all numbers are then refined together under a loss that forgives outliers.
/// The boxes come in order of steps. Throws `NoPeopleCamera`.
PeopleCamera estimatePeopleCamera(const std::vector<PersonBox>& boxes, const cv::Size& imageSize,
                                  double bodyHeight);

}  // namespace grouptracker
