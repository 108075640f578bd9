#pragma once

#include "host/people/InputFrame.h"
#include "host/run/ReportedStep.h"

#include <vector>

namespace grouptracker {

/// Where everybody is at a frame of the input: each actor at its current mobile. Actors without a
/// mobile are nowhere.
std::vector<PersonPlace> peopleInView(const InputFrame& frame);

}  // namespace grouptracker
