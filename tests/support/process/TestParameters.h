#pragma once

#include <string>

/// Gives every parameter a value under which people who walk about a metre apart are a group: a
/// delay of 2 frames, a memory of 20, nothing displayed or saved. To be used within the scope of a
/// `StaticsGuard`.
void setTestParameters();

/// The parameter file that holds the parameters' present values.
std::string parameterText();
