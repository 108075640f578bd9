#pragma once

#include "host/base/OutputFile.h"
#include "host/grouping/FrameGroups.h"

#include <optional>
#include <string>

namespace grouptracker {

/// What a groups file says about itself in its first line.
struct GroupsHeader {
  std::string program;         ///< name and version
  std::string input;           ///< file or folder
  std::optional<double> rate;  ///< frame numbers a second; none when it is not known
};

/// Writes the groups file, one JSON object a line and frame of the input:
///
///     {"header": {"version": 1, "program": "grouptracker 0.1.0", "input": "obsmat.txt", "rate":
///     15}}
///     {"frame": 930, "time": 62, "groups": [{"id": 4, "members": [3, 7], "since": 780,
///      "position": [1.25, 4.5], "confidence": 0.93, "from": [2]}], "alone": [9]}
///
/// Each line is handed to the operating system before `write()` returns. Positions are rounded to a
/// tenth of a millimetre, times to a microsecond, confidences to four digits.
class FrameGroupsWriter {
 public:
  explicit FrameGroupsWriter(const std::string& path) : m_file(path) {}

  /// To be called before the first `write()`, if at all.
  void writeHeader(const GroupsHeader& header);
  void write(const FrameGroups& frame);

 private:
  OutputFile m_file;
};

/// The line of one frame, with its end.
std::string toLine(const FrameGroups& frame);

}  // namespace grouptracker
