#pragma once

#include <map>
#include <string>

namespace grouptracker {

/// The lines of a scene in which persons 1 and 2 walk side by side, half a metre apart, and person
/// 3 walks alone, each with links to its own last observation; `frame` counts from 1.
std::string walkingLine(int frame, const std::string& more = "");
/// The first `frames` lines.
std::string walkingScene(int frames);

/// The parameter file that the project ships as a sample, one pair a line, with a delay of 2
/// frames; `changes` replaces values by label.
std::string sampleParameters(std::map<std::string, std::string> changes = {}, char lineEnd = '\n');

}  // namespace grouptracker
