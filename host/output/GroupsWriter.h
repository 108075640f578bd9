#pragma once

#include "host/base/OutputFile.h"
#include "host/run/FrameSink.h"

#include <fmt/format.h>

#include <string>

namespace grouptracker {

/// Writes the groups file, one JSON object a line and frame:
///
///     {"frame": 31, "reportedFrame": 26, "inputFrame": 930, "persons": [3, 7, 9],
///      "groups": [{"id": 4, "mobiles": [90, 91], "persons": [3, 7], "position": [x, y, z],
///                  "box2d": [x, y, width, height], "box3d": [b0, b1, b2, b3, b4, b5],
///                  "properties": {"Visible": true, "AvgIntraDist": "0.62", ...}}]}
///
/// Each line is handed to the operating system before `write()` returns. Single-precision numbers
/// are written so that a reader in double precision gets their exact value; one that is not finite
/// becomes null. Properties keep their types.
class GroupsWriter : public FrameSink {
 public:
  explicit GroupsWriter(const std::string& path) : m_file(path) {}

  void write(const FrameReport& report) override;

 private:
  OutputFile m_file;
  fmt::memory_buffer m_line;  ///< kept from frame to frame
};

}  // namespace grouptracker
