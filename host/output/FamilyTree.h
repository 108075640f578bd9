#pragma once

#include "host/run/RunStep.h"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <vector>

namespace grouptracker {

/// The lives of the groups of a run, which of them merged into or split from which, and where each
/// has its place in a drawing along time. Frames are the input's own numbers.
class FamilyTree {
 public:
  struct Life {
    std::int64_t first = 0;           ///< frame of creation
    std::int64_t last = 0;            ///< last frame with members
    std::set<std::uint32_t> persons;  ///< everybody who was ever in it
  };
  struct Tie {
    std::uint32_t from = 0;
    std::uint32_t to = 0;
    EventKind kind = EventKind::merged;
    std::int64_t frame = 0;
  };
  /// The frames that a group takes in a drawing at least.
  using Length = std::function<std::int64_t(std::uint32_t group)>;

  void add(const RunStep& step);

  const std::map<std::uint32_t, Life>& lives() const { return m_lives; }
  const std::vector<Tie>& ties() const { return m_ties; }
  /// A lane from 0 for each group, so that those of one lane are some frames apart and those of one
  /// family are close to each other; families come first.
  std::map<std::uint32_t, int> lanes(std::int64_t gap, const Length& leastLength) const;

 private:
  std::map<std::uint32_t, Life> m_lives;
  std::vector<Tie> m_ties;
};

}  // namespace grouptracker
