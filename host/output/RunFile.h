#pragma once

#include "host/base/LineReader.h"
#include "host/base/OutputFile.h"
#include "host/run/StepSink.h"

#include <fmt/format.h>
#include <simdjson.h>

#include <cstdint>
#include <istream>
#include <string>

namespace grouptracker {

/// Writes the steps of a run, one JSON object a line and step. Those of the evidence make a groups
/// file, see `FrameGroupsWriter`; those of the process an actors file:
///
///     {"frame": 31, "reportedFrame": 26, "inputFrame": 930, "persons": [3, 7, 9],
///      "groups": [{"id": 4, "mobiles": [90, 91], "persons": [3, 7], "position": [x, y, z],
///                  "box2d": [x, y, width, height], "box3d": [b0, b1, b2, b3, b4, b5],
///                  "properties": {"Visible": true, "AvgIntraDist": "0.62", ...}}]}
///
/// Each line is handed to the operating system before `write()` returns. Single-precision numbers
/// are written so that a reader in double precision gets their exact value; one that is not finite
/// becomes null.
class RunFileWriter : public StepSink {
 public:
  explicit RunFileWriter(const std::string& path) : m_file(path) {}

  void write(const RunStep& step) override;

 private:
  OutputFile m_file;
  fmt::memory_buffer m_line;  ///< kept from step to step
};

/// The line of an actors file about a step of the process, with its end.
std::string actorsLine(const RunStep& step);

/// What is read of a file of steps.
enum class RunFilePart {
  whole,      ///< all that a run writes, which must be there
  groupings,  ///< who was in which group and what became of it; all else may be missing
};

/// Reads a groups file or an actors file of a run, line by line: the steps that were written, to
/// the last bit. A header is passed over, as are unknown keys; nulls in positions and boxes are
/// read as no numbers. A line that is cut or holds something else is an `InputError` with file and
/// line; all steps before it have been handed out by then.
class RunFileReader {
 public:
  /// `name` is the file's name in messages. The stream must outlive the reader.
  RunFileReader(std::istream& in, const std::string& name, RunFilePart part = RunFilePart::whole)
      : m_lines(in, name), m_part(part) {}

  /// Replaces `step` by the next line's; false at the end of the file.
  bool next(RunStep& step);

  /// The error for a problem that the reader's user finds in the line that was read last.
  InputError error(const std::string& problem) const { return m_lines.error(problem); }

 private:
  RunStep parse(simdjson::dom::object line);

  LineReader m_lines;
  RunFilePart m_part;
  simdjson::dom::parser m_parser;
  std::uint32_t m_frames = 0;  ///< lines of a groups file so far
};

}  // namespace grouptracker
