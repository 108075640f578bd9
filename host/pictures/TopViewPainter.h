#pragma once

#include "host/pictures/GroundMap.h"
#include "host/pictures/GroundTurn.h"
#include "host/pictures/RecentPast.h"

#include <opencv2/core.hpp>

#include <cstdint>
#include <map>
#include <vector>

namespace grouptracker {

/// Draws the ground plane from above: a grid with a scale bar in metres, groups in their colours
/// with hull, traces and number, and quietly the people alone. Once people show how the camera
/// looks on it, the ground lies as the camera sees it.
class TopViewPainter {
 public:
  explicit TopViewPainter(cv::Size size) : m_size(size), m_map(size) {}

  cv::Mat paint(const RunStep& step, const RecentPast& past);

 private:
  using Outlines = std::map<std::uint32_t, std::vector<cv::Point>>;

  void takePlaces(const RunStep& step);
  /// The grid, which is drawn anew only when another part of the ground is shown.
  cv::Mat ground();
  void paintGrid(cv::Mat& picture) const;
  void paintScaleBar(cv::Mat& picture) const;
  void paintPeople(cv::Mat& picture, const RunStep& step, const RecentPast& past) const;
  /// Returns the outlines by group, corners in pixels.
  Outlines paintGroups(cv::Mat& picture, const RunStep& step, const RecentPast& past) const;
  void paintLabels(cv::Mat& picture, const RunStep& step, const RecentPast& past,
                   const Outlines& groups) const;
  int personPixels() const;

  cv::Size m_size;
  GroundMap m_map;
  GroundTurn m_turn;
  bool m_isTurned = false;
  cv::Mat m_ground;            ///< the grid alone
  cv::Rect2f m_shownOnGround;  ///< the part of the ground that it shows
};

}  // namespace grouptracker
