#pragma once

#include "host/run/RunStep.h"

#include <opencv2/core/matx.hpp>

#include <optional>

namespace grouptracker {

/// Finds how the ground has to be turned, and mirrored where its axes are left-handed, to lie as
/// the camera sees it: what is to the right in the image is to the right, what is far away is up.
/// Learns it from where people are on the ground and how their boxes lie in the image.
class GroundTurn {
 public:
  void add(const RunPerson& person);
  /// Turns places in metres, y upwards; none while too little was seen, or what was seen does not
  /// fit one camera.
  std::optional<cv::Matx22f> matrix() const;

 private:
  /// Two numbers that grow with the way to the right and with the way from the camera, as linear
  /// functions of the place on the ground, by least squares.
  class LinearView {
   public:
    void add(const cv::Point2f& place, const cv::Vec2d& seen);
    /// None when the places explain less than a part of the numbers.
    std::optional<cv::Matx22f> matrix(double leastPart) const;

   private:
    bool isBroad() const;

    cv::Matx33d m_places = cv::Matx33d::zeros();  ///< sums of (x, y, 1)' (x, y, 1)
    cv::Matx<double, 3, 2> m_seen = cv::Matx<double, 3, 2>::zeros();  ///< of (x, y, 1)' seen
    cv::Vec2d m_seenSquared;
  };

  LinearView m_bySize;   ///< of cameras that show people far away smaller
  LinearView m_byPlace;  ///< of cameras that look straight down
};

}  // namespace grouptracker
