#pragma once

#include <map>
#include <string>

namespace grouptracker {

/// The parameter file that the project ships as a sample, one pair a line, with a delay of 2
/// frames; `changes` replaces values by label.
std::string sampleParameters(std::map<std::string, std::string> changes = {}, char lineEnd = '\n');

}  // namespace grouptracker
