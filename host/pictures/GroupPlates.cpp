#include "host/pictures/GroupPlates.h"

#include "host/pictures/Brush.h"
#include "host/pictures/GroupPalette.h"

#include <fmt/format.h>

#include <algorithm>

namespace grouptracker {

void GroupPlates::add(std::uint32_t group, const cv::Rect& area) {
  constexpr int mostRows = 8;
  constexpr int gap = 1;  // pixels
  const std::string text = fmt::format("group {}", group);
  const cv::Size size = brush::plateSize(text);
  const auto inside = [&](int x, int y) {
    return cv::Rect({std::clamp(x, 0, std::max(0, m_picture.cols - size.width)),
                     std::clamp(y, 0, std::max(0, m_picture.rows - size.height))},
                    size);
  };
  const int above = area.y - size.height - gap;
  cv::Rect place = inside(area.x, above);
  for (int row = 0; row < mostRows && !isFree(place); ++row) {
    const int below = area.y + area.height + gap;
    const int distance = row / 2 * (size.height + gap);
    place = row % 2 == 0 ? inside(area.x, above - distance) : inside(area.x, below + distance);
  }
  m_taken.push_back(place);
  brush::plate(m_picture, text, place, colourOf(group));
}

bool GroupPlates::isFree(const cv::Rect& place) const {
  return std::none_of(m_taken.begin(), m_taken.end(),
                      [&](const cv::Rect& taken) { return !(taken & place).empty(); });
}

}  // namespace grouptracker
