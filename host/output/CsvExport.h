#pragma once

#include "host/base/OutputFile.h"
#include "host/run/StepSink.h"

#include <string>

namespace grouptracker {

/// Writes who was in which group where, one line per frame and member of a visible group:
///
///     frame,group,person,x,y
///     930,4,3,7.25,1.5
///
/// `frame` is the input's own number, x and y are metres on the ground. A mobile that nobody had
/// as the current one has no person.
class CsvExport : public StepSink {
 public:
  explicit CsvExport(const std::string& path);

  void write(const RunStep& step) override;

 private:
  OutputFile m_file;
};

}  // namespace grouptracker
