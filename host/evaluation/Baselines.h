#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/WindowScores.h"
#include "host/grouping/PeopleFrame.h"
#include "host/people/InputFrame.h"

#include <vector>

namespace grouptracker {

/// Everybody who has a place that can be compared with others', at every frame of an input.
std::vector<PeopleFrame> peopleIn(FrameSource& input);
/// The same at one frame.
PeopleFrame peopleIn(const InputFrame& frame);

/// Windowed scores of what needs no tracker, so that nobody is fooled by a score.
struct Baselines {
  PrecisionRecall alone;  ///< nobody is in a group
  /// Looks at the whole window at once: two persons are together when their mean distance and the
  /// difference of their displacements over the window are below a limit.
  PrecisionRecall crudeRule;
};

/// Only frames that the truth knows count.
Baselines scoreBaselines(const std::vector<PeopleFrame>& frames, const GroupTruth& truth,
                         const WindowOptions& options);

}  // namespace grouptracker
