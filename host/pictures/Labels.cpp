#include "host/pictures/Labels.h"

#include "host/pictures/Brush.h"

#include <algorithm>
#include <array>

namespace grouptracker {

void Labels::addPlate(const std::string& text, const cv::Rect& area, const cv::Scalar& colour) {
  constexpr int rings = 3;
  const cv::Size size = brush::plateSize(text, m_scale);
  auto place = findPlace(size, area, rings, true);
  if (!place) {
    place = findPlace(size, area, rings, false);
  }
  if (place) {
    m_texts.push_back(*place);
    brush::plate(m_picture, text, *place, colour, m_scale);
  }
}

void Labels::addName(const std::string& text, const cv::Rect& area, const cv::Scalar& ink,
                     const cv::Scalar& rim) {
  const auto place = findPlace(brush::sizeOf(text, m_scale), area, 1, true);
  if (place) {
    m_texts.push_back(*place);
    brush::text(m_picture, text, {place->x, place->br().y}, ink, rim, m_scale);
  }
}

std::optional<cv::Rect> Labels::findPlace(cv::Size size, const cv::Rect& area, int rings,
                                          bool isOffPeople) const {
  constexpr int gap = 2;  // pixels
  const cv::Rect picture({0, 0}, m_picture.size());
  const cv::Point middle = area.tl() + cv::Point(area.width / 2, area.height / 2);
  for (int ring = 0; ring < rings; ++ring) {
    const int away = gap + ring * (size.height + gap);
    const int left = area.x - size.width - away;
    const int right = area.br().x + away;
    const int above = area.y - size.height - away;
    const int below = area.br().y + away;
    const std::array<cv::Point, 8> corners{cv::Point(middle.x - size.width / 2, above),
                                           {middle.x - size.width / 2, below},
                                           {right, middle.y - size.height / 2},
                                           {left, middle.y - size.height / 2},
                                           {right, above},
                                           {left, above},
                                           {right, below},
                                           {left, below}};
    for (const cv::Point& corner : corners) {
      const cv::Rect place(corner, size);
      if ((place & picture) == place && isFree(place, isOffPeople)) {
        return place;
      }
    }
  }
  return std::nullopt;
}

bool Labels::isFree(const cv::Rect& place, bool isOffPeople) const {
  const auto touches = [&place](const cv::Rect& other) { return !(other & place).empty(); };
  return std::none_of(m_texts.begin(), m_texts.end(), touches) &&
         !(isOffPeople && std::any_of(m_people.begin(), m_people.end(), touches));
}

}  // namespace grouptracker
