#pragma once

#include "host/people/InputFrame.h"

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// What a run asks of its input.
struct InputDemands {
  unsigned int delay = 0;    ///< frames that the process waits before it decides
  bool needsImages = false;  ///< whether the parameters ask for output images
  bool takesAll = true;      ///< rather than a range, of which it is told when no frame is within
};

/// Looks at the frames of an input as they pass and says in the end what is legal but hardly meant:
/// no images where images are asked for, too few frames, people outside of the image, of no human
/// size or of no human speed. Each at most once, whatever the number of frames.
class InputWatch {
 public:
  /// `imageSize` in pixels; none when nobody knows it.
  explicit InputWatch(std::optional<cv::Size> imageSize) : m_imageSize(imageSize) {}

  void look(const InputFrame& frame);
  /// To be called after the last frame.
  std::vector<std::string> warnings(const InputDemands& demands) const;

 private:
  struct PlacedPerson {
    std::uint32_t id = 0;
    cv::Point2f place;  ///< metres
  };

  void lookAtBody(const kelDataPhysicalObject& body);
  void lookAtMoves(const InputFrame& frame);
  void notePlaces(const InputFrame& frame);

  std::optional<cv::Size> m_imageSize;
  std::uint64_t m_frames = 0;
  std::uint64_t m_images = 0;  ///< frames that have one
  std::uint64_t m_bodies = 0;
  std::uint64_t m_giants = 0;                ///< three times too tall
  std::uint64_t m_boxes = 0;                 ///< in the image
  std::uint64_t m_outside = 0;               ///< of these, with no part within it
  std::uint64_t m_moves = 0;                 ///< of somebody from one frame to the next
  std::uint64_t m_leaps = 0;                 ///< of these, faster than anybody runs
  std::optional<double> m_time;              ///< of the last frame, seconds
  std::vector<PlacedPerson> m_places;        ///< at the last frame, in ascending order of ids
  std::vector<PlacedPerson> m_placesBefore;  ///< at the one before
};

}  // namespace grouptracker
