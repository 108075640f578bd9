#pragma once

#include "host/pictures/RecentPast.h"
#include "host/pictures/TopViewPainter.h"

#include <opencv2/core.hpp>

#include <optional>

namespace grouptracker {

/// Draws a reported frame: the camera's image with what was found on it, beside it the view from
/// above when it is asked for, and the latest events in words. All pictures have the size of the
/// first. Without images the view from above stands alone. An image that is missing or not
/// readable is an `InputError` at the frame's place.
class StepPainter {
 public:
  explicit StepPainter(bool showsTopView) : m_showsTopView(showsTopView) {}

  cv::Mat paint(const RunStep& step);

 private:
  cv::Mat paintCamera(const RunStep& step);
  TopViewPainter& topView();
  void paintWords(cv::Mat& picture, const RunStep& step) const;

  bool m_showsTopView;
  std::optional<bool> m_hasImages;  ///< none before the first picture
  cv::Size m_imageSize;             ///< of all camera images in the picture
  RecentPast m_past{traceLength};
  std::optional<TopViewPainter> m_topView;

  static constexpr std::size_t traceLength = 25;  // steps
};

}  // namespace grouptracker
