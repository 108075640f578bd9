#pragma once

#include <opencv2/core/mat.hpp>

/// The image patch of a group at one frame and the rectangle, in image pixels, that it was taken
/// from. The pixels are the patch's own; copies of a patch share them.
///
/// Making a patch from pixels adds two trace lines to the diagnostics, also for an empty one; they
/// mark no failure.
class ROI {
 public:
  /// No pixels and a zero rectangle.
  ROI() = default;
  /// Copies the pixels.
  ROI(const cv::Mat& pixels, const cv::Rect& box);
  /// Takes the pixels over when nobody else has a part in them, else copies them.
  ROI(cv::Mat&& pixels, const cv::Rect& box);
  ROI(const ROI&) = default;
  ROI(ROI&&) noexcept = default;
  ROI& operator=(const ROI&) = default;
  ROI& operator=(ROI&&) noexcept = default;
  virtual ~ROI() = default;

  const cv::Mat& getImage() const { return m_image; }
  const cv::Rect& getRect() const { return m_rect; }

  /// Frees the pixels and keeps the rectangle.
  void releasePixels();
  /// Frees the pixels and zeroes the rectangle.
  void release();

 private:
  cv::Mat m_image;
  cv::Rect m_rect;
};
