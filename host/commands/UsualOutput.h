#pragma once

#include <string>

namespace grouptracker {

/// The groups file of a run whose user named no output: NAME.groups.jsonl in the working folder,
/// where the input is NAME.csv or a folder NAME. The groups of an earlier run are replaced.
/// Anything else that bears the name is an `OutputError`, and standard input, which has no name, an
/// `InputError`.
std::string usualOutput(const std::string& input);

}  // namespace grouptracker
