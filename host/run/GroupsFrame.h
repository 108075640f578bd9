#pragma once

#include "host/run/FrameReport.h"

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace grouptracker {

/// One mobile of a group at one frame.
struct GroupMember {
  std::uint32_t mobile = 0;
  std::optional<std::uint32_t> person;  ///< none when no actor had the mobile as its current one
  std::optional<cv::Point2f> place;     ///< on the ground, metres; a groups file does not tell it
};

/// One group as the output says it: values only, whether they come from a run or from its file.
struct GroupState {
  std::uint32_t id = 0;
  std::vector<GroupMember> members;
  bool isVisible = false;               ///< whether the members are those of the reported frame
  std::optional<cv::Rect> box2D;        ///< pixels; none without members
  std::optional<cv::Point2f> position;  ///< mean of the members on the ground, metres
  std::optional<std::int64_t> merge;    ///< the property: -1 or a group; none while not told
  std::optional<std::int64_t> split;    ///< as `merge`
};

/// What the output says at one frame.
struct GroupsFrame {
  std::uint32_t frame = 0;                 ///< frames processed so far: when it was decided
  std::int32_t reportedFrame = 0;          ///< the frame that it is about; below 1 at first
  std::optional<std::int64_t> inputFrame;  ///< the input's own number of the reported frame
  std::vector<std::uint32_t> persons;      ///< everybody in view at the reported frame
  std::vector<GroupState> groups;          ///< in ascending order of ids
};

/// Copies what a run reports, with the places of the members.
GroupsFrame toGroupsFrame(const FrameReport& report);

}  // namespace grouptracker
