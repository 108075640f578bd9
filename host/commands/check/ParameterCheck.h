#pragma once

#include "host/commands/check/CheckReport.h"
#include "host/run/ParameterFile.h"

#include <string>

namespace grouptracker {

/// Looks at the values of a parameter file that has them all, and warns of those outside of any
/// sensible range: thresholds that nobody can pass, windows that never fill. `name` is the file's
/// name in messages.
void checkParameterValues(const ParameterFile& parameters, const std::string& name,
                          CheckReport& report);

}  // namespace grouptracker
