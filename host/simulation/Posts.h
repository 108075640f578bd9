#pragma once

#include "host/base/RandomNumbers.h"
#include "host/simulation/Walker.h"

#include <vector>

namespace grouptracker {

/// Lets people stand and talk face to face: gives each a post on a circle around `middle`,
/// neighbours 0.8 to 1.1 m apart, in the order in which they are around it now, so that nobody has
/// to walk through the others.
void formCircle(std::vector<Walker*> members, const cv::Point2d& middle, RandomNumbers& random);

/// The middle of people's posts; of their positions where they have none. At least one person.
cv::Point2d middleOf(const std::vector<Walker*>& members);

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
