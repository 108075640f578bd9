#pragma once

#include <opencv2/core/mat.hpp>

#include <utility>

/// One video frame: an 8-bit image of three channels, blue first. Copies share the pixels.
class kelDataImage {
 public:
  explicit kelDataImage(cv::Mat pixels) : m_pixels(std::move(pixels)) {}

  /// The pixels, shared.
  const cv::Mat& mat() const { return m_pixels; }
  /// The pixels, for drawing in place.
  cv::Mat& mat() { return m_pixels; }

 private:
  cv::Mat m_pixels;
};
