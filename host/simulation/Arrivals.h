#pragma once

#include "host/base/RandomNumbers.h"
#include "host/simulation/SimulationOptions.h"

#include <opencv2/core/types.hpp>

#include <optional>
#include <vector>

namespace grouptracker {

/// Why and where people stop on their way.
struct Stay {
  enum class Kind { talk, wait, queue };

  Kind kind = Kind::talk;
  cv::Point2d place;     ///< the middle, for people who talk
  double until = 0.0;    ///< seconds; who queues goes when it is served
  bool isThere = false;  ///< has come long before, so stands there at once
};

/// People who come into the scene together, or one alone, and cross it, some with a stay.
struct Arrival {
  double time = 0.0;  ///< seconds; the first frame is at 0
  int size = 1;
  cv::Point2d from;
  cv::Point2d to;
  double speed = 0.0;  ///< m/s
  std::optional<Stay> stay{};
};

/// Seconds before the first frame from which people come, so that the scene is not empty at first.
inline constexpr double warmUp = 12.0;

/// Who comes when and where, in the order of time.
std::vector<Arrival> planArrivals(const SimulationOptions& options, RandomNumbers& random);

/// The sizes in which so many people come, groups first, by the shares of the options.
std::vector<int> drawSizes(int people, double groupShare, RandomNumbers& random);

/// A place at the border of the scene where people go to, other than the side on which `place`
/// lies.
cv::Point2d placeElsewhere(const cv::Point2d& place, RandomNumbers& random);

/// Adds what makes a scene crowded: two dense streams that pass each other, groups that stand and
/// talk, people who wait and people who queue. Half of those who stand are there from the
/// beginning. Draws no random number when the options ask for none of it.
void planCrowding(const SimulationOptions& options, RandomNumbers& random,
                  std::vector<Arrival>& arrivals);

}  // namespace grouptracker
