#pragma once

#include "host/base/JsonLine.h"
#include "host/base/OutputFile.h"
#include "host/grouping/FrameGroups.h"

#include <string>

namespace grouptracker {

/// The line of one frame, with its end.
std::string toLine(const FrameGroups& frame);
/// The same into a buffer that is kept from line to line.
void appendLine(json_line::Line& line, const FrameGroups& frame);

/// Writes the groups file, one JSON object a line and frame of the input:
///
///     {"frame": 930, "time": 62, "groups": [{"id": 4, "members": [3, 7], "since": 780,
///      "position": [1.25, 4.5], "confidence": 0.93, "from": [2]}], "alone": [9]}
///
/// Each line is handed to the operating system before `write()` returns. Positions are rounded to a
/// tenth of a millimetre, times to a microsecond, confidences to four digits.
class FrameGroupsWriter {
 public:
  explicit FrameGroupsWriter(const std::string& path) : m_file(path) {}

  void write(const FrameGroups& frame) { m_file.writeLines(toLine(frame)); }

 private:
  OutputFile m_file;
};

}  // namespace grouptracker
