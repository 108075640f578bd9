#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// What can happen to a group, in the order in which the events of one frame are listed.
enum class EventKind : std::uint8_t {
  created,  ///< `persons` are the first members
  split,    ///< `other` is the group that it came from
  merged,   ///< `other` merged into it; `persons` came along
  joined,   ///< `persons` is the one who joined
  left,     ///< `persons` is the one who left
  ended,    ///< it has no members any more; it may still be continued, members then join anew
  removed,  ///< forgotten for good
};

inline constexpr int eventKinds = 7;

/// Something that happened to a group at one frame. Members at any time are the first ones and
/// those who came along or joined, less those who left; nobody once it has ended or is removed.
struct TrackedEvent {
  EventKind kind = EventKind::created;
  std::uint32_t group = 0;
  std::optional<std::uint32_t> other;      ///< the second group of a merge or split
  std::vector<std::uint32_t> persons;      ///< ascending
  std::int32_t reportedFrame = 0;          ///< the frame that it is about
  std::optional<std::int64_t> inputFrame;  ///< the input's own number of that frame
  std::uint32_t frame = 0;                 ///< the frame at which it was decided

  bool operator==(const TrackedEvent&) const = default;
};

/// The word for a kind: "created", "joined", ...
const char* nameOf(EventKind kind);

/// The event as one line of JSON with its line end:
///
///     {"event": "joined", "group": 4, "person": 9, "reportedFrame": 26, "inputFrame": 930,
///      "frame": 31}
///
/// Created and merged groups have "persons" instead of "person"; merged ones "from" and "into",
/// split ones "from".
std::string toJsonLine(const TrackedEvent& event);

/// The event in a few words for a picture or a table: "group 4: 9 joined".
std::string describe(const TrackedEvent& event);

}  // namespace grouptracker
