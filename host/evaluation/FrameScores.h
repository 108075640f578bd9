#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/ScoredSteps.h"

#include <array>
#include <string>
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

/// Writes who is in the wrong company at which time step, as comma-separated values:
///
///     frame,person,error,missing,extra
///     780,4,wrong companions,5,7 9
///
/// `error` is "not found" for a member of a true group that was found alone, "not a member" for a
/// person alone that was found in a group, "wrong companions" otherwise; `missing` are the true
/// companions that were not found, `extra` the found ones that are not true. `steps` are those of
/// the run. A file that cannot be written is an `OutputError`.
void writeErrorList(const GroupedFrames& run, const std::vector<PartitionPair>& steps,
                    const std::string& path);

}  // namespace grouptracker
