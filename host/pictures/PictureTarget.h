#pragma once

#include <opencv2/core.hpp>

#include <cstdint>

namespace grouptracker {

/// Takes the pictures of the reported frames, all of one size: a film, a window.
class PictureTarget {
 public:
  PictureTarget() = default;
  PictureTarget(const PictureTarget&) = delete;
  PictureTarget& operator=(const PictureTarget&) = delete;
  virtual ~PictureTarget() = default;

  /// `number` is the reported frame.
  virtual void add(const cv::Mat& picture, std::int64_t number) = 0;
  /// Whether further pictures have to be drawn.
  virtual bool wantsMore() const { return true; }
  /// Called once after the last picture.
  virtual void finish() {}
};

}  // namespace grouptracker
