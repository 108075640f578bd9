#pragma once

#include "host/output/FamilyTree.h"
#include "host/output/WholeFile.h"
#include "host/run/StepSink.h"

#include <chrono>
#include <memory>
#include <string>

namespace grouptracker {

/// Writes the family tree of the groups in the language of Graphviz, drawn along time from left to
/// right: a bar for each group from its first to its last frame with everybody who was ever in it,
/// an arrow from the end of each group to the one that it merged into and a dashed one from each
/// group to those that split from it, at the frame of the event. Frames are the input's own
/// numbers. The places of all are fixed, so every program of Graphviz draws the same. Written when
/// the run has ended and, where the place is a file, every few seconds before.
class LineageGraph : public StepSink {
 public:
  explicit LineageGraph(const std::string& path) : m_file(path) {}

  void write(const RunStep& step) override;
  void finish() override;

 private:
  using Clock = std::chrono::steady_clock;

  WholeFile m_file;
  Clock::time_point m_written = Clock::now();
  FamilyTree m_tree;
};

}  // namespace grouptracker
