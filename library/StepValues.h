#pragma once

#include "host/grouping/FrameGroups.h"
#include "host/run/RunStep.h"
#include "library/Tracker.h"

namespace grouptracker {

/// A step of the evidence, with its events, as those see it who use the library.
TrackerStep toTrackerStep(const RunStep& step);

/// The same without events as the project's own code takes it.
FrameGroups toFrameGroups(const TrackerStep& step);

}  // namespace grouptracker
