#include "host/pictures/GroundTurn.h"

#include <opencv2/core.hpp>

#include <cmath>

namespace grouptracker {

// People are about as tall as each other, so one by the height of a box is the distance from the
// camera, and the column by that height the way to the side, both but for a factor. Rows and
// columns alone are no linear functions of the place and lead astray while people stand unevenly.
void GroundTurn::add(const RunPerson& person) {
  constexpr double farthest = 500.0;  // metres; beyond it a place is a mistake of the lifting
  if (!person.seen || person.seen->box2D.empty()) {
    return;
  }
  const cv::Point2f& place = person.seen->ground;
  if (!(std::abs(place.x) < farthest && std::abs(place.y) < farthest)) {
    return;
  }
  const cv::Rect& box = person.seen->box2D;
  const double column = box.x + 0.5 * box.width;
  m_bySize.add(place, {column / box.height, 1.0 / box.height});
  m_byPlace.add(place, {column, -1.0 * (box.y + box.height)});
}

std::optional<cv::Matx22f> GroundTurn::matrix() const {
  constexpr double mostOfIt = 0.8;
  constexpr double halfOfIt = 0.5;
  const auto bySize = m_bySize.matrix(mostOfIt);
  return bySize ? bySize : m_byPlace.matrix(halfOfIt);
}

void GroundTurn::LinearView::add(const cv::Point2f& place, const cv::Vec2d& seen) {
  const cv::Vec3d ground(place.x, place.y, 1.0);
  m_places += ground * ground.t();
  m_seen += ground * seen.t();
  m_seenSquared += seen.mul(seen);
}

/// Whether the places are not all on one line.
bool GroundTurn::LinearView::isBroad() const {
  constexpr double fewest = 6.0;       // sightings
  constexpr double leastSpread = 0.5;  // square metres, where people spread least
  const double count = m_places(2, 2);
  if (count < fewest) {
    return false;
  }
  const double meanX = m_places(0, 2) / count;
  const double meanY = m_places(1, 2) / count;
  const double covariance = m_places(0, 1) / count - meanX * meanY;
  const double spreadX = m_places(0, 0) / count - meanX * meanX;
  const double spreadY = m_places(1, 1) / count - meanY * meanY;
  return (spreadX + spreadY) / 2.0 - std::hypot((spreadX - spreadY) / 2.0, covariance) >
         leastSpread;
}

std::optional<cv::Matx22f> GroundTurn::LinearView::matrix(double leastPart) const {
  if (!isBroad()) {
    return std::nullopt;
  }
  constexpr double rounding = 1e-9;  // what is left of numbers that are all the same
  const cv::Matx<double, 3, 2> fit = m_places.inv() * m_seen;
  const cv::Matx22d explained = m_seen.t() * fit;
  for (int i = 0; i < 2; ++i) {
    const double mean = m_seen(2, i) * m_seen(2, i) / m_places(2, 2);
    const double spread = m_seenSquared[i] - mean;
    if (!(spread > rounding * m_seenSquared[i] && explained(i, i) - mean > leastPart * spread)) {
      return std::nullopt;
    }
  }
  // Along a row of the image nothing comes nearer, as cameras are held upright.
  const double turning = fit(0, 0) * fit(1, 1) - fit(1, 0) * fit(0, 1);
  const double sign = turning < 0.0 ? -1.0 : 1.0;
  const cv::Vec2d right = cv::normalize(cv::Vec2d(fit(1, 1), -fit(0, 1))) * sign;
  const cv::Vec2d away = cv::Vec2d(-right[1], right[0]) * sign;
  return cv::Matx22f(static_cast<float>(right[0]), static_cast<float>(right[1]),
                     static_cast<float>(away[0]), static_cast<float>(away[1]));
}

}  // namespace grouptracker
