#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/WindowScores.h"
#include "host/people/InputFrame.h"
#include "host/run/RunStep.h"

namespace grouptracker {

/// An input as the steps of a run that finds no groups: everybody who has a place, at every frame.
RunSteps stepsWithoutGroups(FrameSource& input);

/// Windowed scores of what needs no tracker, so that nobody is fooled by a score.
struct Baselines {
  PrecisionRecall alone;  ///< nobody is in a group
  /// Looks at the whole window at once: two persons are together when their mean distance and the
  /// difference of their displacements over the window are below a limit.
  PrecisionRecall crudeRule;
};

Baselines scoreBaselines(const RunSteps& steps, const GroupTruth& truth,
                         const WindowOptions& options);

}  // namespace grouptracker
