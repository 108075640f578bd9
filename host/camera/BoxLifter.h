#pragma once

#include <kel/BoundingBox3D.h>
#include <kel/kelAbstractDataCalibration.h>

#include <opencv2/core/types.hpp>

#include <optional>

namespace grouptracker {

/// Goes between boxes in the image and upright bodies on the ground, through a camera. Image boxes
/// in pixels, y downwards; bodies in metres, z up, their first corner the upper one.

/// Where the body stands: the ground under the middle of the box's lower edge. None when the camera
/// sees no ground there.
std::optional<cv::Point3f> liftFoot(const kelAbstractDataCalibration& camera,
                                    const cv::Rect2d& box);

/// The body that fills the box from its foot: as high as the box's upper edge demands above the
/// foot, as wide and deep as its lower edge. None when the camera gives no finite body.
std::optional<BoundingBox3D> liftBox(const kelAbstractDataCalibration& camera,
                                     const cv::Rect2d& box, const cv::Point3f& foot);

/// The smallest image box that shows all eight corners of the body; empty when the camera cannot
/// see one of them.
cv::Rect projectBox(const kelAbstractDataCalibration& camera, const BoundingBox3D& body);

/// The body of a person of whom only the place is known: 0.5 x 0.5 x 1.7 m, upright on its foot
/// point. Metres, z up; the first corner is the upper one.
inline BoundingBox3D standingBody(const cv::Point3f& foot) {
  constexpr float halfWidth = 0.25F;
  constexpr float height = 1.7F;
  return {foot.x + halfWidth, foot.y + halfWidth, height,
          foot.x - halfWidth, foot.y - halfWidth, 0.0F};
}

}  // namespace grouptracker
