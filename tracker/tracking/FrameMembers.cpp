#include "tracker/tracking/FrameMembers.h"

#include "tracker/geometry/ObjectType.h"

#include <algorithm>
#include <cmath>

void MotionSample::add(MetaLPO& mobile) {
  const double speed = mobile.computeSpeed();
  const cv::Point3f direction = mobile.computeDirection();
  m_motions.push_back({speed, direction.x, direction.y, direction.z});
  m_speedSum += speed;
  m_directionSum += direction;
}

Spreads MotionSample::spreads() const {
  const auto count = static_cast<double>(m_motions.size());
  const auto divisor = static_cast<float>(m_motions.size());
  const double meanSpeed = m_speedSum / count;
  const cv::Point3f meanDirection(m_directionSum.x / divisor, m_directionSum.y / divisor,
                                  m_directionSum.z / divisor);
  double speedDeviations = 0.0;
  double directionDeviations = 0.0;
  for (const Motion& motion : m_motions) {
    const double speed = motion.speed - meanSpeed;
    speedDeviations += speed * speed;
    const double dx = motion.x - meanDirection.x;
    const double dy = motion.y - meanDirection.y;
    const double dz = motion.z - meanDirection.z;
    directionDeviations += dx * dx + dy * dy + dz * dz;
  }
  return {std::sqrt(speedDeviations / count), std::sqrt(directionDeviations / 3 / count)};
}

Spreads spreadsOf(std::span<MetaLPO* const> members) {
  MotionSample sample;
  for (MetaLPO* member : members) {
    sample.add(*member);
  }
  return sample.spreads();
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
  if (m_members.isEmpty() || m_members.last()->getIdent() < mobile->getIdent()) {
    m_members.push_back(mobile);  // the usual case: ids grow with time
  } else {
    m_members.insert(placeOf(mobile->getIdent()), mobile);
  }
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

constexpr int roomyFrame = 16;  // members of a frame that need no allocation

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
    QVarLengthArray<float, roomyFrame> x(m_members.size());
    QVarLengthArray<float, roomyFrame> y(m_members.size());
    QVarLengthArray<double, roomyFrame> distances(m_members.size());
    for (int i = 0; i < m_members.size(); ++i) {
      x[i] = m_members[i]->getBaseCenter().x;
      y[i] = m_members[i]->getBaseCenter().y;
    }
    // Row by row, but added pair by pair in the order of the ids: the sum decides and is printed.
    m_distanceSum = 0.0;
    for (std::size_t i = 0; i + 1 < count; ++i) {
      distancesFromFirst(x.constData() + i, y.constData() + i, count - i, distances.data());
      for (std::size_t j = 0; j + 1 < count - i; ++j) {
        m_distanceSum += distances.constData()[j];
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
