#pragma once

#include "host/base/JsonAccess.h"
#include "host/base/JsonLine.h"
#include "host/run/RunStep.h"

namespace grouptracker {

/// A line of a groups file: one frame of the input, with the groups that the evidence makes.
///
///     {"frame": 930, "time": 62.0, "groups": [{"id": 4, "members": [3, 7], "since": 780,
///      "position": [1.25, 4.5], "confidence": 0.93, "from": [2]}], "alone": [9]}
///
/// What was written is read without loss, but for what only the input tells.
namespace groups_line {

/// Appends the line of a step of the evidence, with its end.
void append(json_line::Line& line, const RunStep& step);

/// Whether an object is such a line; other lines are those of a process.
bool isOne(simdjson::dom::object line);
/// Whether an object is the header that may stand before the first line.
bool isHeader(simdjson::dom::object line);

/// The step of a line; with `isWhole` false only frame, groups and persons have to be there. The
/// count of frames is left to the caller. What is wrong is a `ValueProblem`.
RunStep parse(simdjson::dom::object line, bool isWhole);

}  // namespace groups_line

}  // namespace grouptracker
