#pragma once

#include "host/simulation/Walker.h"

#include <vector>

namespace grouptracker {

/// The acceleration of a walker by the social force model (Helbing and Molnar 1995) with the group
/// term of Moussaid et al. (2010): towards the goal at the desired speed, away from others, most
/// from those ahead, and towards the middle of the own company, so that groups walk side by side
/// and stay within talking distance. Metres per second squared.
cv::Point2d socialForce(const Walker& walker, const std::vector<Walker>& all);

}  // namespace grouptracker
