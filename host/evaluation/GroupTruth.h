#pragma once

#include "host/evaluation/Grouping.h"

#include <cstdint>
#include <map>
#include <vector>

namespace grouptracker {

using GroupIds = std::vector<std::uint32_t>;

/// The annotated groups of a sequence: the same for all of it, or for each frame its own.
class GroupTruth {
 public:
  /// Groups that hold for the whole sequence.
  explicit GroupTruth(Grouping always = {}) : m_always(std::move(always)) {}

  /// `ids`, when they are known, are the identities of the groups over time, in their order.
  void setAt(std::int64_t frame, Grouping groups, GroupIds ids = {});
  /// Whether the truth says anything about a frame: one for the whole sequence does about all, one
  /// per frame about those that it lists, with groups or without.
  bool knows(std::int64_t frame) const { return !isPerFrame() || m_byFrame.contains(frame); }
  bool isPerFrame() const { return !m_byFrame.empty(); }
  /// The groups at a frame of the input; none at a frame that a truth per frame leaves out.
  const Grouping& at(std::int64_t frame) const;
  /// The identities of the groups at a frame; none when they are not known.
  const GroupIds& idsAt(std::int64_t frame) const;
  /// The groups of the persons over several frames: two are together when they are at more than
  /// half of the frames, and so are those whom others connect.
  Grouping over(const std::vector<std::int64_t>& frames) const;
  /// The same among some persons, who are in ascending order.
  Grouping over(const std::vector<std::int64_t>& frames, const std::vector<Person>& persons) const;
  /// All frames together: whoever was ever in one group is.
  Grouping whole() const;

 private:
  Grouping m_always;
  std::map<std::int64_t, Grouping> m_byFrame;
  std::map<std::int64_t, GroupIds> m_idsByFrame;
};

}  // namespace grouptracker
