#pragma once

#include <string>

namespace grouptracker {

/// The text of the parameter file that holds when the user gives none: the sample for people who
/// were annotated, with what it says in frames derived from seconds. `framesPerSecond` is above 0.
std::string builtInParameters(double framesPerSecond);

}  // namespace grouptracker
