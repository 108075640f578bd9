#pragma once

#include <kel/BoundingBox3D.h>

#include <opencv2/core/types.hpp>

namespace grouptracker {

/// The body of a person of whom only the place is known: 0.5 x 0.5 x 1.7 m, upright on its foot
/// point. Metres, z up; the first corner is the upper one.
inline BoundingBox3D standingBody(const cv::Point3f& foot) {
  constexpr float halfWidth = 0.25F;
  constexpr float height = 1.7F;
  return {foot.x + halfWidth, foot.y + halfWidth, height,
          foot.x - halfWidth, foot.y - halfWidth, 0.0F};
}

}  // namespace grouptracker
