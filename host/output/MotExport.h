#pragma once

#include "host/base/OutputFile.h"
#include "host/run/StepSink.h"

#include <string>

namespace grouptracker {

/// Writes the visible groups as boxes in the ten columns of the MOTChallenge, one line per frame
/// and group:
///
///     frame, id, left, top, width, height, confidence, x, y, z
///
/// `frame` is the input's own number, `id` the group's, from 1 as everywhere in the MOTChallenge
/// (the process counts its groups from 0, so theirs are one more), the box in pixels, -1 four times
/// when it is not known, x and y the middle of the group on the ground in metres, z 0. The
/// confidence is how sure the group is, 1 for one of the process.
class MotExport : public StepSink {
 public:
  explicit MotExport(const std::string& path) : m_file(path) {}

  void write(const RunStep& step) override;

 private:
  OutputFile m_file;
};

}  // namespace grouptracker
