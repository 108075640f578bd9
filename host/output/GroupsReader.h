#pragma once

#include "host/base/LineReader.h"
#include "host/run/GroupsFrame.h"

#include <simdjson.h>

#include <istream>
#include <string>

namespace grouptracker {

/// Reads the groups file of a run, line by line, see `GroupsWriter` for a sample. Unknown keys are
/// ignored. A line that is cut or holds something else is an `InputError` with file and line; all
/// lines before it have been handed out by then.
class GroupsReader {
 public:
  /// `name` is the file's name in messages. The stream must outlive the reader.
  GroupsReader(std::istream& in, const std::string& name) : m_lines(in, name) {}

  /// Replaces `frame` by the next line's; false at the end of the file.
  bool next(GroupsFrame& frame);

  /// The error for a problem that the reader's user finds in the line that was read last.
  InputError error(const std::string& problem) const { return m_lines.error(problem); }

 private:
  LineReader m_lines;
  simdjson::dom::parser m_parser;
};

}  // namespace grouptracker
