#pragma once

#include "host/grouping/FrameGroups.h"
#include "host/input/OpenedInput.h"
#include "host/run/GroupRun.h"
#include "host/run/RunParameters.h"
#include "host/run/RunStep.h"
#include "library/Tracker.h"

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>

namespace grouptracker {

// What those who use the library hand over and get, as the project's own parts have it. What is
// wrong with the settings of a tracker is an `InputError`.

/// Puts what the settings say about the camera where inputs are told it: a camera, or a homography.
void takeCamera(const TrackerSettings& settings, InputOptions& options);

/// The camera of an input of which nobody knows more; null when the settings name none.
QSharedPointer<kelAbstractDataCalibration> cameraOf(const TrackerSettings& settings);

/// How groups are found beside a process with these parameters.
GroupRunOptions groupOptions(const TrackerSettings& settings, const RunParameters& parameters);

/// A step of the evidence, with its events, as those see it who use the library.
TrackerStep toTrackerStep(const RunStep& step);

/// The same without events as the project's own code takes it.
FrameGroups toFrameGroups(const TrackerStep& step);

}  // namespace grouptracker
