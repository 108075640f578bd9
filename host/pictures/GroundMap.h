#pragma once

#include <opencv2/core/types.hpp>

#include <optional>
#include <vector>

namespace grouptracker {

/// Maps the ground plane, in metres with y upwards, to a picture in pixels with y downwards. The
/// part of the ground that is shown grows when somebody leaves it and never shrinks.
class GroundMap {
 public:
  explicit GroundMap(cv::Size picture) : m_picture(picture) {}

  /// Makes room for the places.
  void include(const std::vector<cv::Point2f>& places);
  cv::Point toPicture(const cv::Point2f& place) const;
  /// Pixels per metre.
  double scale() const { return m_scale; }
  /// The ground that is shown, metres.
  cv::Rect2f shown() const { return m_shown; }

 private:
  void fit();

  cv::Size m_picture;
  std::optional<cv::Rect2f> m_needed;  ///< none before the first place
  cv::Rect2f m_shown{0.0F, 0.0F, 1.0F, 1.0F};
  double m_scale = 1.0;
};

}  // namespace grouptracker
