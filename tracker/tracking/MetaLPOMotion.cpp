#include "tracker/geometry/Util.h"
#include "tracker/tracking/MetaLPO.h"

namespace {

constexpr double standstill = 0.0001;  // metres per step; a speed up to this is not cached
constexpr double notComputed = -1.0;

}  // namespace

double MetaLPO::computeSpeed() {
  if (m_speed - standstill > 0) {
    return m_speed;
  }
  if (!hasStep()) {
    m_speed = 0;
    m_speedSamples = 0;
    return m_speed;
  }
  const auto father = getFather(unsignedId(m_bestFatherId));
  if (!father || father->m_speed == notComputed) {
    return computeSpeedRec();
  }
  const double step = Util::norm3D(m_step);
  if (father->m_speed - standstill < 0) {
    m_speedSamples = 1;
    m_speed = step;
  } else {
    const int samples = father->m_speedSamples;
    m_speedSamples = samples + 1;
    m_speed = (samples * father->m_speed + step) / (samples + 1);
  }
  return m_speed;
}

double MetaLPO::computeSpeedRec() {
  // The best father is asked of this node at every step, so the walk never gets past the first one.
  m_speedSamples = hasStep() ? 1 : 0;
  m_speed = hasStep() ? Util::norm3D(m_step) : 0.0;
  return m_speed;
}
