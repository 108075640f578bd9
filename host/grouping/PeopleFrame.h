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
  /// Seconds, growing from frame to frame; none when the input has none.
  std::optional<double> time;
  std::vector<PersonAt> people;  ///< in ascending order of persons, each once
};

/// The rhythm in which groups are looked for. A tick is a frame at least `interval` after the tick
/// before, so that the same scene gives the same groups at any frame rate.
namespace ticks {

constexpr double interval = 0.3;       ///< seconds
constexpr double tolerance = 1e-6;     ///< seconds; moments that differ by less are the same
constexpr double usualLength = 0.4;    ///< seconds that the first tick stands for
constexpr double longestLength = 1.0;  ///< seconds that a tick stands for after a gap

}  // namespace ticks

}  // namespace grouptracker
