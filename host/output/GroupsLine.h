#pragma once

#include "host/base/JsonAccess.h"
#include "host/run/RunStep.h"

namespace grouptracker {

/// Reading a line of a groups file, see `FrameGroupsWriter`.
namespace groups_line {

/// Whether an object is such a line; other lines are those of a process.
bool isOne(simdjson::dom::object line);
/// Whether an object is the header that may stand before the first line.
bool isHeader(simdjson::dom::object line);

/// The step of a line; with `isWhole` false only frame, groups and persons have to be there. The
/// count of frames is left to the caller. What is wrong is a `ValueProblem`.
RunStep parse(simdjson::dom::object line, bool isWhole);

}  // namespace groups_line

}  // namespace grouptracker
