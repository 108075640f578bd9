#pragma once

#include "RandomNumbers.h"
#include "SimulationOptions.h"

#include <opencv2/core/types.hpp>

#include <vector>

/// People who come into the scene together, or one alone, and cross it.
struct Arrival {
  double time = 0.0;  ///< seconds; the first frame is at 0
  int size = 1;
  cv::Point2d from;
  cv::Point2d to;
  double speed = 0.0;  ///< m/s
};

/// Seconds before the first frame from which people come, so that the scene is not empty at first.
inline constexpr double warmUp = 20.0;

/// Who comes when and where, in the order of time.
std::vector<Arrival> planArrivals(const SimulationOptions& options, RandomNumbers& random);

/// A place out of the camera's sight where people come from and go to, other than the side of the
/// scene on which `from` lies.
cv::Point2d placeAcross(const cv::Point2d& from, RandomNumbers& random);
