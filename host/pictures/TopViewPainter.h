#pragma once

#include "host/pictures/GroundMap.h"
#include "host/pictures/RecentPast.h"

#include <opencv2/core.hpp>

#include <cstdint>
#include <map>
#include <vector>

namespace grouptracker {

/// Draws the ground plane from above: a grid with a scale bar in metres, everybody with a trace,
/// groups in their colours with hull and label.
class TopViewPainter {
 public:
  explicit TopViewPainter(cv::Size size) : m_size(size), m_map(size) {}

  cv::Mat paint(const RunStep& step, const RecentPast& past);

 private:
  using Outlines = std::map<std::uint32_t, std::vector<cv::Point>>;

  void paintGrid(cv::Mat& picture) const;
  void paintScaleBar(cv::Mat& picture) const;
  void paintPeople(cv::Mat& picture, const RunStep& step, const RecentPast& past) const;
  /// Returns the outlines by group, corners in pixels.
  Outlines paintGroups(cv::Mat& picture, const RunStep& step) const;

  cv::Size m_size;
  GroundMap m_map;
};

}  // namespace grouptracker
