#pragma once

#include "host/base/OutputFile.h"
#include "host/run/StepSink.h"

#include <string>

namespace grouptracker {

/// Writes the events of every frame, one JSON object a line and event, see `toJsonLine`. The lines
/// of a frame are handed to the operating system before `write()` returns.
class EventWriter : public StepSink {
 public:
  explicit EventWriter(const std::string& path) : m_file(path) {}

  void write(const RunStep& step) override;

 private:
  OutputFile m_file;
};

}  // namespace grouptracker
