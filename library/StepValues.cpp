#include "library/StepValues.h"

#include "host/grouping/FrameGroupsWriter.h"
#include "host/run/GroupRun.h"

#include <cmath>
#include <utility>

namespace grouptracker {

namespace {

constexpr double perMetre = 1e4;  // as fine as positions are told

/// The decimal number that a single-precision one stands for.
double decimal(double value) {
  return std::round(value * perMetre) / perMetre;
}

TrackerGroup toTrackerGroup(FoundGroup&& group) {
  return {group.id,         std::move(group.members),
          group.since,      {decimal(group.position.x), decimal(group.position.y)},
          group.confidence, std::move(group.from)};
}

}  // namespace

TrackerStep toTrackerStep(const RunStep& step) {
  FrameGroups found = toFrameGroups(step);
  TrackerStep result;
  result.frame = found.frame;
  result.time = found.time;
  result.alone = std::move(found.alone);
  for (FoundGroup& group : found.groups) {
    result.groups.push_back(toTrackerGroup(std::move(group)));
  }
  for (const TrackedEvent& event : step.events) {
    result.events.push_back({nameOf(event.kind), event.group, event.other, event.persons});
  }
  return result;
}

FrameGroups toFrameGroups(const TrackerStep& step) {
  FrameGroups frame{step.frame.value_or(0), step.time, {}, step.alone};
  for (const TrackerGroup& group : step.groups) {
    frame.groups.push_back({group.id,
                            group.members,
                            group.since,
                            {group.position[0], group.position[1]},
                            group.confidence,
                            group.from});
  }
  return frame;
}

std::string toLine(const TrackerStep& step) {
  return toLine(toFrameGroups(step));
}

}  // namespace grouptracker
