#include "host/pictures/GroundMap.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr float room = 2.0F;      // metres by which the shown ground grows at a time
constexpr float least = 8.0F;     // metres that are shown in any case
constexpr float margin = 1.0F;    // metres between anybody and the rim
constexpr double farthest = 1e6;  // pixels; what lies beyond is not seen in any case

float down(float coordinate) {
  return std::floor((coordinate - margin) / room) * room;
}

float up(float coordinate) {
  return std::ceil((coordinate + margin) / room) * room;
}

}  // namespace

void GroundMap::turn(const cv::Matx22f& turn) {
  m_turn = turn;
  m_needed.reset();
}

void GroundMap::include(const std::vector<cv::Point2f>& places) {
  const auto before = m_needed;
  for (const cv::Point2f& ground : places) {
    const cv::Point2f place = turned(ground);
    if (std::isfinite(place.x) && std::isfinite(place.y)) {
      const cv::Rect2f around(cv::Point2f(down(place.x), down(place.y)),
                              cv::Point2f(up(place.x), up(place.y)));
      m_needed = m_needed ? *m_needed | around : around;
    }
  }
  if (m_needed != before) {
    fit();
  }
}

void GroundMap::fit() {
  const float missing[] = {std::max(0.0F, least - m_needed->width),
                           std::max(0.0F, least - m_needed->height)};
  *m_needed = {m_needed->x - missing[0] / 2.0F, m_needed->y - missing[1] / 2.0F,
               m_needed->width + missing[0], m_needed->height + missing[1]};
  m_scale = std::min(static_cast<double>(m_picture.width) / m_needed->width,
                     static_cast<double>(m_picture.height) / m_needed->height);
  const auto width = static_cast<float>(m_picture.width / m_scale);
  const auto height = static_cast<float>(m_picture.height / m_scale);
  m_shown = {m_needed->x - (width - m_needed->width) / 2.0F,
             m_needed->y - (height - m_needed->height) / 2.0F, width, height};
}

cv::Point GroundMap::toPicture(const cv::Point2f& ground) const {
  const cv::Point2f place = turned(ground);
  const auto pixel = [](double value) {
    return std::isfinite(value)
               ? static_cast<int>(std::lround(std::clamp(value, -farthest, farthest)))
               : static_cast<int>(-farthest);
  };
  return {pixel((place.x - m_shown.x) * m_scale),
          pixel((m_shown.y + m_shown.height - place.y) * m_scale)};
}

}  // namespace grouptracker
