#pragma once

#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/ScoredSteps.h"

namespace grouptracker {

/// How well the ids of found groups stand for the true ones over the whole run (identity F1)
/// [Ristani et al. 2016]: each true group is given at most one found id and each id to at most one
/// true group, so that the memberships that agree are as many as can be. A membership is one person
/// in one group at one frame; `matched` are those that agree. True groups of several frames are the
/// same one as in `TimeScores`. `frames` are those that count.
Counts identityMatches(const GroupedFrames& frames, const GroupTruth& truth);

/// Joins to groups, and how many of them are returns to a group that was left a moment before.
struct Flicker {
  static constexpr double moment = 2.0;  ///< seconds

  int joins = 0;  ///< a person is in a group, and was not in it at the frame before
  int back = 0;   ///< of these, was in it a moment before or less
  double share() const { return joins > 0 ? static_cast<double>(back) / joins : 0.0; }
};

/// Needs no truth: of all frames of a run.
Flicker flickerOf(const GroupedFrames& run);

}  // namespace grouptracker
