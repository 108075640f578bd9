#pragma once

#include <opencv2/core.hpp>

#include <optional>
#include <vector>

namespace grouptracker {

/// Maps the ground plane, in metres with y upwards, to a picture in pixels with y downwards. The
/// part of the ground that is shown grows when somebody leaves it and shrinks only when it turns.
class GroundMap {
 public:
  explicit GroundMap(cv::Size picture) : m_picture(picture) {}

  /// Turns, and perhaps mirrors, the ground under the picture and forgets which part was shown.
  void turn(const cv::Matx22f& turn);
  /// Makes room for the places.
  void include(const std::vector<cv::Point2f>& places);
  cv::Point toPicture(const cv::Point2f& ground) const;
  /// Pixels per metre.
  double scale() const { return m_scale; }
  /// The ground that is shown, metres after turning.
  cv::Rect2f shown() const { return m_shown; }

 private:
  void fit();
  cv::Point2f turned(const cv::Point2f& place) const { return m_turn * place; }

  cv::Matx22f m_turn = cv::Matx22f::eye();
  cv::Size m_picture;
  std::optional<cv::Rect2f> m_needed;  ///< none before the first place
  cv::Rect2f m_shown{0.0F, 0.0F, 1.0F, 1.0F};
  double m_scale = 1.0;
};

}  // namespace grouptracker
