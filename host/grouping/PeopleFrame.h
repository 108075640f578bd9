#pragma once

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace grouptracker {

using PersonId = std::uint32_t;

/// Where somebody stands or walks at one frame.
struct PersonAt {
  PersonId person = 0;
  cv::Point2d place;  ///< on the ground, metres
};

/// Everybody in view at one frame of the input.
struct PeopleFrame {
  std::int64_t number = 0;  ///< the number that the input itself gives to the frame
  std::optional<double>
      time;  ///< seconds, growing from frame to frame; none when the input has none
  std::vector<PersonAt> people;  ///< in ascending order of persons, each once
};

}  // namespace grouptracker
