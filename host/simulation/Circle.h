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

}  // namespace grouptracker
