#pragma once

#include "host/run/RunStep.h"

#include <opencv2/core/matx.hpp>

#include <optional>

namespace grouptracker {

/// Finds how the ground has to be turned, and mirrored where its axes are left-handed, to lie as
/// the camera sees it: what is to the right in the image is to the right, what is far away is up.
/// Learns it from where people's feet are on the ground and in the image.
class GroundTurn {
 public:
  void add(const RunPerson& person);
  /// Turns places in metres, y upwards; none while too little was seen, or what was seen does not
  /// fit one camera.
  std::optional<cv::Matx22f> matrix() const;

 private:
  cv::Matx33d m_grounds = cv::Matx33d::zeros();  ///< sums of (x, y, 1)' (x, y, 1)
  cv::Matx<double, 3, 2> m_feet = cv::Matx<double, 3, 2>::zeros();  ///< of (x, y, 1)' (u, -v)
  cv::Vec2d m_feetSquared;                                          ///< of u² and v²
};

}  // namespace grouptracker
