#pragma once

#include <kel/kelDataActor.h>

#include <QSharedPointer>

#include <cstdint>
#include <optional>
#include <vector>

namespace grouptracker {

/// One group as the process reported it.
struct GroupReport {
  QSharedPointer<kelDataActor> actor;
  /// For each of the actor's mobiles, in its order: the person whose current mobile it was.
  std::vector<std::optional<std::uint32_t>> persons;
};

/// What came out of one frame. Decisions are delayed, so the report is about an earlier frame.
struct FrameReport {
  std::uint32_t frame = 0;                 ///< frames processed so far, from 1
  std::int32_t reportedFrame = 0;          ///< the frame that the report is about; below 1 at first
  std::optional<std::int64_t> inputFrame;  ///< the input's own number of the reported frame
  std::vector<std::uint32_t> persons;      ///< the input actors of the reported frame, in order
  std::vector<GroupReport> groups;         ///< in the order of the process
};

}  // namespace grouptracker
