#pragma once

#include <opencv2/core/types.hpp>

#include <cstdint>

namespace grouptracker {

/// A simulated person. Metres and seconds on the ground plane.
struct Walker {
  std::uint32_t id = 0;
  cv::Point2d position;
  cv::Point2d velocity;
  cv::Point2d goal;           ///< where the way leads out of the scene
  double desiredSpeed = 0.0;  ///< m/s
  /// Whom the person keeps together with: walkers of the same company share goal and speed.
  int company = 0;
  /// The group that an onlooker would see, after the company changed only once the distance shows
  /// it; 0 for a person alone. Groups may have one member left in the scene.
  int group = 0;
  bool isCatchingUp = false;  ///< on the way to a company that it joins
};

}  // namespace grouptracker
