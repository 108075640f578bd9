#pragma once

#include "host/base/OutputFile.h"
#include "host/run/StepSink.h"

#include <string>

namespace grouptracker {

/// Writes who was in which group where, one line per frame and member of a visible group:
///
///     frame,group,person,x,y,time
///     930,4,3,7.25,1.5,62
///
/// `frame` is the input's own number, x and y are metres on the ground, `time` are the frame's
/// seconds, empty where they are not known. A mobile that nobody had
/// as the current one has no person.
class CsvExport : public StepSink {
 public:
  explicit CsvExport(const std::string& path);

  void write(const RunStep& step) override;

 private:
  OutputFile m_file;
};

}  // namespace grouptracker
