#pragma once

#include "InputFrame.h"
#include "ReportedStep.h"

#include <vector>

/// Where everybody is at a frame of the input: each actor at its current mobile. Actors without a
/// mobile are nowhere.
std::vector<PersonPlace> peopleInView(const InputFrame& frame);
