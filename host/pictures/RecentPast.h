#pragma once

#include "host/pictures/GroupColours.h"
#include "host/run/RunStep.h"

#include <opencv2/core/types.hpp>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Where a person was at one step.
struct TracePoint {
  cv::Point2f ground;  ///< metres
  cv::Point foot;      ///< middle of the lower edge of the image box, pixels
};

/// What pictures show of the past: where everybody was over the last steps, which group they are
/// in, and what happened to the groups lately.
class RecentPast {
 public:
  /// `length` is the number of steps that are remembered.
  explicit RecentPast(std::size_t length) : m_length(length) {}

  void add(const RunStep& step);
  /// From the oldest to the latest; empty for somebody who is out of view.
  const std::deque<TracePoint>& traceOf(std::uint32_t person) const;
  /// The visible group of a person at the latest step, the last of several.
  std::optional<std::uint32_t> groupOf(std::uint32_t person) const;
  /// The same, but none for somebody who is the only one in it: drawn as quietly as people alone.
  std::optional<std::uint32_t> companyOf(std::uint32_t person) const;
  cv::Scalar colourOf(std::uint32_t group) const { return m_colours.colourOf(group); }
  /// The latest events in words, the newest last.
  std::vector<std::string> events() const;

 private:
  struct Said {
    std::string text;
    std::size_t age = 0;  ///< steps
  };

  void addEvents(const RunStep& step);

  std::size_t m_length;
  std::map<std::uint32_t, std::deque<TracePoint>> m_traces;
  std::map<std::uint32_t, std::uint32_t> m_groups;  ///< by person
  std::map<std::uint32_t, std::size_t> m_sizes;     ///< by group
  GroupColours m_colours;
  std::deque<Said> m_events;
};

}  // namespace grouptracker
