#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/PartitionScores.h"
#include "host/run/RunStep.h"

#include <cstddef>

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
};

TimeScores scoreTime(const RunSteps& run, const GroupTruth& truth);

/// Merges and splits that were found within a tolerance of a true one of somebody in common.
struct EventScores {
  Counts merges;
  Counts splits;
};

/// A true merge: a group whose members were in several groups the step before; a true split the
/// other way round. Where the truth has ids, one of the several must end (begin) there, so that a
/// person who changes groups is neither. Only a truth per frame has such events. `tolerance` is in
/// time steps.
EventScores scoreEvents(const RunSteps& run, const GroupTruth& truth, std::size_t tolerance);

}  // namespace grouptracker
