#pragma once

#include "host/simulation/Arrivals.h"

#include <vector>

namespace grouptracker {

/// Adds what makes a scene crowded: two dense streams that pass each other, groups that stand and
/// talk, people who wait and people who queue. Half of those who stand are there from the
/// beginning. Draws no random number when the options ask for none of it.
void planCrowding(const SimulationOptions& options, RandomNumbers& random,
                  std::vector<Arrival>& arrivals);

}  // namespace grouptracker
