#pragma once

#include "host/output/WholeFile.h"
#include "host/run/StepSink.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace grouptracker {

/// Writes the family tree of the groups in the language of Graphviz: a box for each group with its
/// frames and everybody who was ever in it, an arrow from each group to the one in which it went up
/// and a dashed one from each group to those that split from it. Frames are the input's own
/// numbers. Written when the run has ended.
class LineageGraph : public StepSink {
 public:
  explicit LineageGraph(const std::string& path) : m_file(path) {}

  void write(const RunStep& step) override;
  void finish() override;

 private:
  struct Life {
    std::int64_t first = 0;  ///< frame of creation
    std::int64_t last = 0;   ///< last frame with members
    std::set<std::uint32_t> persons;
  };
  struct Tie {
    std::uint32_t from = 0;
    std::uint32_t to = 0;
    EventKind kind = EventKind::merged;
    std::int64_t frame = 0;
  };

  WholeFile m_file;
  std::map<std::uint32_t, Life> m_lives;
  std::vector<Tie> m_ties;
};

}  // namespace grouptracker
