#pragma once

#include "host/base/InputError.h"
#include "host/input/OpenedInput.h"
#include "host/input/TrackRows.h"

#include <istream>
#include <string>

namespace grouptracker {

/// Reads people's places on the ground from a table with one observation a line. Its columns are
/// named in the first line, in any order, with further ones among them:
///
///     frame,id,x,y
///     780,1,8.457,3.588
///
/// or in a comment, as pedestrian laboratories do, between blanks:
///
///     # framerate: 16.00
///     # id frame x/m y/m z/m
///     1 780 8.457 3.588 1.76
///
/// Separators are commas, semicolons, tabulators or blanks, see `FieldSplitter`; `TrackColumns`
/// says which names are known. Without any names and with comments the columns are id, frame, x, y.
/// In place of the frame there may be a time in seconds. Lines may come in any order; blank lines
/// and comments are passed over. What is no number, no whole one where that is needed, or too far
/// away, and a line with another count of fields are an `InputError`; when `onProblem` does not
/// throw it, the line is passed over.
TrackRecording readTable(std::istream& in, const std::string& name, const TableChoice& choice,
                         const ProblemHandler& onProblem = throwProblem);

/// Whether lines from the beginning of a file look like such a table.
bool isTable(const std::vector<std::string>& head);

/// Opens such a file.
OpenedInput openTable(const std::string& path, const InputOptions& options);

}  // namespace grouptracker
