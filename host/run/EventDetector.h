#pragma once

#include "host/run/RunStep.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace grouptracker {

/// Finds what happened to groups by comparing what the steps say at one frame with what they said
/// before. It knows nothing else, so a run and its file give the same events. Members are followed
/// as persons; a mobile that nobody had as the current one takes no part.
///
/// A group of the evidence says out of which others it came: by a merge when the other is gone, by
/// a split when it goes on. One that is gone without having merged has ended and may come back.
///
/// The process names only the last of the groups that one group absorbed at a frame. Another group
/// that had members at the frame before and is gone counts as absorbed too, by the group to which
/// most of its members changed; without such a group it was removed.
class EventDetector {
 public:
  /// The events of the next step, ordered by kind and then by group.
  std::vector<TrackedEvent> next(const RunStep& step);

 private:
  using Persons = std::vector<std::uint32_t>;  ///< ascending, each once

  static constexpr std::int64_t untold = -1;

  /// What is known of a group that was listed at the last frame.
  struct Known {
    Persons members;  ///< empty once the group has ended
    bool isOpen = false;
    GroupSource source = GroupSource::process;
    std::int64_t merge = untold;  ///< the last value told
    std::int64_t split = untold;
  };
  using KnownGroups = std::map<std::uint32_t, Known>;

  void recallReturning(const RunStep& step);
  KnownGroups listed(const RunStep& step) const;
  void findMerges(const KnownGroups& now);
  void findOrigins(const RunStep& step, const KnownGroups& now);
  void addGone(std::uint32_t id, const Known& group, const KnownGroups& now);
  void addMerge(std::uint32_t into, std::uint32_t from, const KnownGroups& now);
  std::optional<std::uint32_t> heirOf(const Persons& members, const KnownGroups& now) const;
  Persons cameAlong(std::uint32_t group) const;
  Persons membersBefore(std::uint32_t group) const;
  void compare(std::uint32_t id, const Known& now);
  void add(EventKind kind, std::uint32_t group, const Persons& persons = {},
           std::optional<std::uint32_t> other = std::nullopt);

  KnownGroups m_known;
  std::map<std::uint32_t, Persons> m_cameAlong;  ///< by group: whom this frame's merges brought
  std::set<std::uint32_t> m_absorbed;            ///< groups whose going up in another is told
  std::vector<TrackedEvent> m_events;            ///< of the frame in work
  TrackedEvent m_stamp;                          ///< the frame numbers of the frame in work
};

}  // namespace grouptracker
