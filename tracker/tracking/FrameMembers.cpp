#include "tracker/tracking/FrameMembers.h"

#include "tracker/geometry/ObjectType.h"

#include <algorithm>
#include <cmath>
#include <vector>

Spreads spreadsOf(std::span<MetaLPO* const> members) {
  const auto count = static_cast<double>(members.size());
  const auto divisor = static_cast<float>(members.size());
  double speedSum = 0.0;
  cv::Point3f directionSum(0.0F, 0.0F, 0.0F);
  for (MetaLPO* member : members) {
    speedSum += member->computeSpeed();
    directionSum += member->computeDirection();
  }
  const double meanSpeed = speedSum / count;
  const cv::Point3f meanDirection(directionSum.x / divisor, directionSum.y / divisor,
                                  directionSum.z / divisor);
  double speedDeviations = 0.0;
  double directionDeviations = 0.0;
  for (MetaLPO* member : members) {
    const double speed = member->computeSpeed() - meanSpeed;
    speedDeviations += speed * speed;
    const cv::Point3f direction = member->computeDirection() - meanDirection;
    const double dx = direction.x;
    const double dy = direction.y;
    const double dz = direction.z;
    directionDeviations += dx * dx + dy * dy + dz * dz;
  }
  return {std::sqrt(speedDeviations / count), std::sqrt(directionDeviations / 3 / count)};
}

QVarLengthArray<MetaLPO*, FrameMembers::usualSize>::iterator FrameMembers::placeOf(int id) {
  return std::lower_bound(
      m_members.begin(), m_members.end(), id,
      [](const MetaLPO* member, int wanted) { return member->getIdent() < wanted; });
}

void FrameMembers::insert(MetaLPO* mobile) {
  if (m_members.empty()) {
    m_motions = mobile->motions();
  } else if (m_motions != mobile->motions()) {
    m_motions = nullptr;
  }
  m_members.insert(placeOf(mobile->getIdent()), mobile);
  m_presence += ::presence(mobile->getType());
  forget();
}

void FrameMembers::remove(int id) {
  const auto place = placeOf(id);
  if (place != m_members.end() && (*place)->getIdent() == id) {
    m_presence -= ::presence((*place)->getType());
    m_members.erase(place);
    forget();
  }
}

void FrameMembers::forget() {
  m_hasDistances = false;
  m_hasSpreads = false;
}

namespace {

// The distances from the first of some points on the ground to all others, in metres.
void distancesFromFirst(const float* x, const float* y, std::size_t count, double* distances) {
  for (std::size_t j = 1; j < count; ++j) {
    const double dx = x[j] - x[0];
    const double dy = y[j] - y[0];
    distances[j - 1] = std::sqrt(dx * dx + dy * dy);
  }
}

}  // namespace

std::pair<double, int> FrameMembers::pairDistances() const {
  const auto count = static_cast<std::size_t>(m_members.size());
  if (!m_hasDistances) {
    std::vector<float> x(count);
    std::vector<float> y(count);
    std::vector<double> distances(count);
    for (std::size_t i = 0; i < count; ++i) {
      x[i] = members()[i]->getBaseCenter().x;
      y[i] = members()[i]->getBaseCenter().y;
    }
    // Row by row, but added pair by pair in the order of the ids: the sum decides and is printed.
    m_distanceSum = 0.0;
    for (std::size_t i = 0; i + 1 < count; ++i) {
      distancesFromFirst(&x[i], &y[i], count - i, distances.data());
      for (std::size_t j = 0; j + 1 < count - i; ++j) {
        m_distanceSum += distances[j];
      }
    }
    m_hasDistances = true;
  }
  return {m_distanceSum, static_cast<int>(count * (count - 1) / 2)};
}

cv::Point3f FrameMembers::center() const {
  cv::Point3f sum(0.0F, 0.0F, 0.0F);
  for (const MetaLPO* member : members()) {
    sum += member->getCenter();
  }
  const auto divisor = static_cast<float>(m_members.size());
  return {sum.x / divisor, sum.y / divisor, sum.z / divisor};
}

bool FrameMembers::hasCurrentSpreads() const {
  return m_hasSpreads && m_motions != nullptr && m_motionVersion == m_motions->version(m_frame);
}

Spreads FrameMembers::spreads() const {
  if (!hasCurrentSpreads()) {
    m_spreads = spreadsOf(members());
    m_hasSpreads = true;
    m_motionVersion = m_motions == nullptr ? 0 : m_motions->version(m_frame);
  }
  return m_spreads;
}
