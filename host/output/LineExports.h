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
