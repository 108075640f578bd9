#pragma once

#include "host/evaluation/GroupTruth.h"

#include <istream>
#include <string>

namespace grouptracker {

/// Reads annotated groups. Files named *.jsonl hold the groups of each frame, one object a line:
///
///     {"frame": 780, "groups": [[3, 7], [4, 9, 12]], "ids": [1, 5]}
///
/// `frame` is the input's own number; a group may also be an object with the list under "persons".
/// `ids` (optional) says which groups of several frames are the same one, whoever comes and goes.
/// All other files hold groups for the whole sequence, the persons of one group a line, separated
/// by blanks, tabulators, commas or semicolons. A first line that is no list of persons is a
/// header; empty lines, persons on their own and repeated ones are allowed, and lines that share a
/// person are one group. Bad input is an `InputError` with file and line.
GroupTruth readTruth(const std::string& path);
GroupTruth readGroupLists(std::istream& in, const std::string& name);
GroupTruth readGroupsPerFrame(std::istream& in, const std::string& name);

}  // namespace grouptracker
