#pragma once

#include "host/base/InputError.h"

#include <kel/BoundingBox3D.h>

#include <opencv2/core/types.hpp>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// One person seen at one time step. At least one of position and image box is there.
struct Observation {
  std::uint32_t person = 0;
  std::optional<cv::Point2d> position;  ///< of the feet on the ground, metres
  std::optional<cv::Rect2d> box2D;      ///< pixels, as exact as the input gives it
};

/// Everybody seen at one time step, in ascending order of persons; each person once.
struct ObservationStep {
  std::int64_t frame = 0;           ///< the input's own number
  std::optional<double> time;       ///< seconds by the input's own clock; none when it has none
  InputPlace place;                 ///< where the step stands in the input, for messages
  std::filesystem::path imageFile;  ///< empty when the input names no image
  std::vector<Observation> observations;
};

/// An input that knows persons and places but neither mobiles nor links: what most trackers and
/// data sets write. Yields one step after the other, empty ones included. Bad input is an
/// `InputError`.
class ObservationSource {
 public:
  ObservationSource() = default;
  ObservationSource(const ObservationSource&) = delete;
  ObservationSource& operator=(const ObservationSource&) = delete;
  virtual ~ObservationSource() = default;

  /// Replaces `step` by the next one; false at the end of the input.
  virtual bool next(ObservationStep& step) = 0;
  /// The number of steps, when it is known.
  virtual std::optional<std::uint64_t> totalSteps() const { return std::nullopt; }
};

/// What no true observation exceeds; values beyond are damaged or in another unit.

constexpr double largestFrame = 1e15;  // whole numbers up to here are exact
constexpr double largestPerson = std::numeric_limits<std::uint32_t>::max();
constexpr double farthestPosition = 1e9;       // m
constexpr double farthestBox = 1e6;            // pixels
constexpr std::size_t longestRow = 64 * 1024;  // bytes of a line of numbers

/// Throws `ValueProblem` when a position on the ground lies too far away to be metres.
void expectMetres(const cv::Point2d& position);
/// The same when a box has a negative size or lies too far away to be pixels.
void expectPixels(const cv::Rect2d& box);

}  // namespace grouptracker
