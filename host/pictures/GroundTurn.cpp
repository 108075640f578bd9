#include "host/pictures/GroundTurn.h"

#include <opencv2/core.hpp>

#include <cmath>

namespace grouptracker {

namespace {

using Vector = cv::Vec2d;

/// Whether an image coordinate follows from the places on the ground for the most part.
bool isExplained(double squaredSum, double explainedSum, double sum, double count) {
  constexpr double leastPart = 0.5;
  const double spread = squaredSum - sum * sum / count;
  return spread > 0.0 && (explainedSum - sum * sum / count) / spread >= leastPart;
}

}  // namespace

void GroundTurn::add(const RunPerson& person) {
  constexpr double farthest = 500.0;  // metres; beyond it a place is a mistake of the lifting
  if (!person.seen || person.seen->box2D.empty()) {
    return;
  }
  const cv::Point2f& place = person.seen->ground;
  const cv::Rect& box = person.seen->box2D;
  if (!(std::abs(place.x) < farthest && std::abs(place.y) < farthest)) {
    return;
  }
  const cv::Vec3d ground(place.x, place.y, 1.0);
  const Vector foot(box.x + 0.5 * box.width, -(box.y + box.height));
  m_grounds += ground * ground.t();
  m_feet += ground * foot.t();
  m_feetSquared += foot.mul(foot);
}

std::optional<cv::Matx22f> GroundTurn::matrix() const {
  constexpr double fewest = 6.0;  // sightings
  constexpr double leastSpread =
      0.5;  // square metres, in the direction in which people spread least
  const double count = m_grounds(2, 2);
  if (count < fewest) {
    return std::nullopt;
  }
  const double covariance =
      m_grounds(0, 1) / count - m_grounds(0, 2) * m_grounds(1, 2) / count / count;
  const double spreadX = m_grounds(0, 0) / count - std::pow(m_grounds(0, 2) / count, 2);
  const double spreadY = m_grounds(1, 1) / count - std::pow(m_grounds(1, 2) / count, 2);
  const double narrowest =
      (spreadX + spreadY) / 2.0 - std::hypot((spreadX - spreadY) / 2.0, covariance);
  if (!(narrowest > leastSpread)) {
    return std::nullopt;
  }
  const cv::Matx<double, 3, 2> fit = m_grounds.inv() * m_feet;
  const cv::Matx22d explained = m_feet.t() * fit;
  for (int i = 0; i < 2; ++i) {
    if (!isExplained(m_feetSquared[i], explained(i, i), m_feet(2, i), count)) {
      return std::nullopt;
    }
  }
  // Columns of the image's affine map; the ground's way that leads along a row of the image is the
  // camera's right, as cameras are held upright.
  const double turning = fit(0, 0) * fit(1, 1) - fit(1, 0) * fit(0, 1);
  const Vector alongRow =
      cv::normalize(Vector(fit(1, 1), -fit(0, 1)) * (turning < 0.0 ? -1.0 : 1.0));
  const Vector away = Vector(-alongRow[1], alongRow[0]) * (turning < 0.0 ? -1.0 : 1.0);
  return cv::Matx22f(static_cast<float>(alongRow[0]), static_cast<float>(alongRow[1]),
                     static_cast<float>(away[0]), static_cast<float>(away[1]));
}

}  // namespace grouptracker
