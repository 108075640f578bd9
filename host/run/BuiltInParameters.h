#pragma once

#include <string>

namespace grouptracker {

/// The text of the parameter file that holds when the user gives none: the sample for people who
/// were annotated, with what it says in frames derived from seconds. `framesPerSecond` is above 0.
std::string builtInParameters(double framesPerSecond);

/// Puts that text where a process can read it and returns the file, the same one for the same rate.
/// It stays there, for `explain` and `report` look it up; the user's cache is the place for it, or
/// else the one for temporary files. A file that cannot be written is an `OutputError`.
std::string writeBuiltInParameters(double framesPerSecond);

}  // namespace grouptracker
