#pragma once

#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/ScoredSteps.h"

namespace grouptracker {

/// Merges, or splits: how many were found, and how late.
struct EventScore {
  Counts counts;       ///< matched: within the tolerance of a true one of somebody in common
  double delay = 0.0;  ///< mean of the matched ones, seconds; below 0 when found too early
};

struct EventScores {
  EventScore merges;
  EventScore splits;
};

/// A true merge: a group whose members were in several groups at the annotated frame before; a true
/// split the other way round. Where the truth has ids, one of the several must end (begin) there,
/// so that a person who changes groups is neither. It happened at the frame behind that one, or at
/// any until the frame that shows it. A found merge: a group that comes out of two and more; a
/// found split: one that comes out of a single one. `tolerance` is in seconds.
/// Only a truth per frame has such events.
EventScores scoreEvents(const GroupedFrames& run, const GroupTruth& truth, double tolerance);

}  // namespace grouptracker
