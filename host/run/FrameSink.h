#pragma once

#include "host/run/FrameReport.h"

namespace grouptracker {

/// Takes the reports of a run, one after the other: a file format, a picture, a database. What
/// cannot be written is an `OutputError` or `ClosedPipe`.
class FrameSink {
 public:
  FrameSink() = default;
  FrameSink(const FrameSink&) = delete;
  FrameSink& operator=(const FrameSink&) = delete;
  virtual ~FrameSink() = default;

  /// Takes the next report; when it returns, the report is written as far as the sink ever does.
  virtual void write(const FrameReport& report) = 0;
};

}  // namespace grouptracker
