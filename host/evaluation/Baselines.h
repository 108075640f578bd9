#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/WindowScores.h"
#include "host/people/InputFrame.h"

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <map>
#include <vector>

namespace grouptracker {

/// Where everybody was at one time step of an input.
struct PlacedStep {
  std::int64_t frame = 0;
  std::map<Person, cv::Point2d> places;  ///< on the ground, metres
};

/// All time steps of an input.
std::vector<PlacedStep> placesOf(FrameSource& input);

/// Windowed scores of what needs no tracker, so that nobody is fooled by a score.
struct Baselines {
  PrecisionRecall alone;  ///< nobody is in a group
  /// Looks at the whole window at once: two persons are together when their mean distance and the
  /// difference of their displacements over the window are below a limit.
  PrecisionRecall crudeRule;
};

Baselines scoreBaselines(const std::vector<PlacedStep>& steps, const GroupTruth& truth,
                         const WindowOptions& options);

}  // namespace grouptracker
