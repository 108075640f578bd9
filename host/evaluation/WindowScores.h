#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/ScoredSteps.h"

#include <cstddef>
#include <vector>

namespace grouptracker {

/// How windows are cut out of a run.
struct WindowOptions {
  std::size_t length = 15;   ///< time steps; windows follow each other and do not overlap
  std::size_t together = 6;  ///< time steps of common group that make two persons one group
};

/// The whole windows of a run: persons who are in view at every time step, their true groups and
/// the found ones. Windows of less than two such persons are left out.
std::vector<PartitionPair> windowsOf(const GroupedFrames& run, const GroupTruth& truth,
                                     const WindowOptions& options);

/// The mean of the group MITRE's three numbers over windows; `f1` is the mean of the F1s.
PrecisionRecall meanMitre(const std::vector<PartitionPair>& windows);

/// The whole sequence as one window: everybody who was ever in view; two persons are together when
/// they are at `together` of `length` of the time steps at which both are in view, and so are those
/// whom others connect.
PartitionPair wholeSequence(const GroupedFrames& run, const GroupTruth& truth,
                            const WindowOptions& options);

}  // namespace grouptracker
