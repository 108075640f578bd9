#pragma once

#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/ScoredSteps.h"

namespace grouptracker {

/// How the found groups follow the true ones over time. At a time step a true group, as far as two
/// of its members are in view, and a found group correspond when their common part is at least half
/// of the larger one; of several the one with the largest part counts, then the lowest id. True
/// groups of several steps are the same one when they have one id, or, where the truth has no ids,
/// the same members.
struct TimeScores {
  int trueGroups = 0;       ///< seen with two members at least once
  int neverFound = 0;       ///< of these, without a corresponding group at any step
  int identityChanges = 0;  ///< corresponding groups that differ from the one before
  double untilFound = 0.0;  ///< mean number of steps from first seen to first found
  int foundGroups = 0;      ///< with two persons at least once
  int falseGroups = 0;      ///< of these, never corresponding to a true one

  double changesPerGroup() const {
    return trueGroups > 0 ? static_cast<double>(identityChanges) / trueGroups : 0.0;
  }
  double falseShare() const {
    return foundGroups > 0 ? static_cast<double>(falseGroups) / foundGroups : 0.0;
  }
};

/// `frames` are those that count.
TimeScores scoreTime(const GroupedFrames& frames, const GroupTruth& truth);

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
