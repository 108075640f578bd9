#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/ScoredSteps.h"

#include <array>
#include <vector>

namespace grouptracker {

/// Scores of the time steps one by one, summed or averaged over a run.
struct FrameScores {
  /// The parts of the larger group at which a found group counts as correct.
  static constexpr std::array<double, 3> tolerances{1.0, 2.0 / 3.0, 1.0 / 2.0};

  std::array<Counts, 3> correctGroups;  ///< for each tolerance
  Counts pairs;
  double adjustedRand = 0.0;  ///< mean over the steps with two persons and more
};

/// Truth and finding of each time step among the persons in view.
std::vector<PartitionPair> stepsOf(const GroupedFrames& run, const GroupTruth& truth);

FrameScores scoreFrames(const std::vector<PartitionPair>& steps);

}  // namespace grouptracker
