#pragma once

#include "host/base/RandomNumbers.h"
#include "host/simulation/SimulationOptions.h"

#include <opencv2/core/types.hpp>

#include <vector>

namespace grouptracker {

/// People who come into the scene together, or one alone, and cross it.
struct Arrival {
  double time = 0.0;  ///< seconds; the first frame is at 0
  int size = 1;
  cv::Point2d from;
  cv::Point2d to;
  double speed = 0.0;  ///< m/s
};

/// Seconds before the first frame from which people come, so that the scene is not empty at first.
inline constexpr double warmUp = 12.0;

/// Who comes when and where, in the order of time.
std::vector<Arrival> planArrivals(const SimulationOptions& options, RandomNumbers& random);

/// A place at the border of the scene where people go to, other than the side on which `place`
/// lies.
cv::Point2d placeElsewhere(const cv::Point2d& place, RandomNumbers& random);

}  // namespace grouptracker
