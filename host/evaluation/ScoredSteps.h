#pragma once

#include "host/evaluation/Grouping.h"
#include "host/run/RunStep.h"

#include <istream>
#include <string>

namespace grouptracker {

/// Everybody in view at a step, ascending.
std::vector<Person> personsOf(const RunStep& step);

/// The persons of a visible group, ascending, perhaps a single one; nobody of any other group.
PersonGroup personsOf(const RunGroup& group);

/// The groups of two and more persons at a step.
Grouping groupingOf(const RunStep& step);

/// Adds a step to those that are scored, if it is about a frame of the input, and of it only what
/// scores look at, so that a run of hours fits into memory.
void addScored(RunStep step, RunSteps& run);

/// The steps of a groups file that are scored, in order. Of the file's lines no more has to be
/// there than that needs. Bad input is an `InputError` with file and line.
RunSteps readScored(std::istream& in, const std::string& name);
RunSteps readScored(const std::string& path);

}  // namespace grouptracker
