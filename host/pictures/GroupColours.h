#pragma once

#include "host/run/RunStep.h"

#include <opencv2/core/types.hpp>

#include <cstddef>
#include <cstdint>
#include <map>

namespace grouptracker {

/// Gives every group a colour of the palette when it is first seen, for good: the one that differs
/// most from those of the groups around it and of those that were there a moment ago. The groups
/// of a run alone decide, so all pictures of a run and its report have the same colours.
class GroupColours {
 public:
  void add(const RunStep& step);
  /// The colour's place in the palette; the first one for a group that was never seen.
  std::size_t indexOf(std::uint32_t group) const;
  cv::Scalar colourOf(std::uint32_t group) const;
  /// Of all groups so far, by id.
  const std::map<std::uint32_t, std::size_t>& all() const { return m_colours; }

 private:
  struct Seen {
    std::size_t colour = 0;
    cv::Point2f place;  ///< where its middle was last, metres
    std::size_t atStep = 0;
  };

  std::size_t choose(const cv::Point2f& place) const;

  std::map<std::uint32_t, std::size_t> m_colours;
  std::map<std::uint32_t, Seen> m_lately;  ///< by group
  std::size_t m_steps = 0;
};

}  // namespace grouptracker
