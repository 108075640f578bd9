#pragma once

#include "host/grouping/PeopleFrame.h"

namespace grouptracker {

using GroupId = std::uint32_t;  ///< from 1, never used again

/// People who belong together at one frame.
struct FoundGroup {
  GroupId id = 0;
  std::vector<PersonId> members;  ///< in view at the frame, ascending, at least two
  std::int64_t since = 0;         ///< number of the first frame that lists the group
  cv::Point2d position;           ///< mean of the members on the ground, metres
  double confidence = 0.0;        ///< 0 to 1, how sure it is that these belong together
  /// Groups of the frame before out of which this one came by a merge or a split, ascending.
  std::vector<GroupId> from;

  bool operator==(const FoundGroup&) const = default;
};

/// Who belongs together at one frame of the input, and who is alone.
struct FrameGroups {
  std::int64_t frame = 0;          ///< the input's own number
  std::optional<double> time;      ///< seconds; none when neither the input nor its rate tells it
  std::vector<FoundGroup> groups;  ///< in ascending order of ids; nobody is in two of them
  std::vector<PersonId> alone;     ///< everybody else in view, ascending

  bool operator==(const FrameGroups&) const = default;
};

}  // namespace grouptracker
