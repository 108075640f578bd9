#pragma once

#include "host/base/RandomNumbers.h"
#include "host/simulation/Walker.h"

#include <vector>

namespace grouptracker {

/// A queue of strangers in front of a counter, in the order in which they came: now and then the
/// first is served and goes, and the others move up.
class Queue {
 public:
  /// Beyond so many nobody lines up.
  static constexpr int longest = 14;
  /// A place in the queue, 0 the first, metres.
  static cv::Point2d place(int index);

  /// Gives everybody in the queue the right place; `time` in seconds.
  void moveUp(std::vector<Walker>& walkers, double time, RandomNumbers& random);

 private:
  double m_nextServed = 0.0;  ///< seconds
};

}  // namespace grouptracker
