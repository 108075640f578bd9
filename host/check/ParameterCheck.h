#pragma once

#include "CheckReport.h"

#include <istream>
#include <string>

/// Looks at the values of a parameter file whose labels are right, and warns of those outside of
/// any sensible range: thresholds that nobody can pass, windows that never fill.
void checkParameterValues(std::istream& in, const std::string& name, CheckReport& report);
