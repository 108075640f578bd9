#pragma once

#include "host/commands/check/CheckReport.h"

#include <istream>
#include <string>

namespace grouptracker {

/// Looks at the values of a parameter file whose labels are right, and warns of those outside of
/// any sensible range: thresholds that nobody can pass, windows that never fill.
void checkParameterValues(std::istream& in, const std::string& name, CheckReport& report);

}  // namespace grouptracker
