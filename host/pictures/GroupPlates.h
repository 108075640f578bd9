#pragma once

#include <opencv2/core.hpp>

#include <cstdint>
#include <vector>

namespace grouptracker {

/// Writes the names of groups on a picture, each on a plate in the group's colour: above the group,
/// or near by when another name is there already.
class GroupPlates {
 public:
  explicit GroupPlates(cv::Mat& picture) : m_picture(picture) {}

  /// `area` is where the group is, pixels.
  void add(std::uint32_t group, const cv::Rect& area);

 private:
  bool isFree(const cv::Rect& place) const;

  cv::Mat& m_picture;
  std::vector<cv::Rect> m_taken;
};

}  // namespace grouptracker
