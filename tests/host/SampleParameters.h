#pragma once

#include <map>
#include <string>

/// A parameter file that suits small test scenes, one pair a line; `changes` replaces values.
std::string sampleParameters(const std::map<std::string, std::string>& changes = {},
                             char lineEnd = '\n');
