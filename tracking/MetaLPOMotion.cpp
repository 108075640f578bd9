#include "MetaLPO.h"
#include "Util.h"

namespace {

constexpr double standstill = 0.0001;  // metres per step; a speed up to this is not cached
constexpr double notComputed = -1.0;

}  // namespace

double MetaLPO::stepLength(const MetaLPO& from) const {
  return Util::norm3D(Util::motionVector3D(from.observation().getBoundingBox3D(),
                                           observation().getBoundingBox3D()));
}

double MetaLPO::computeSpeed() {
  if (m_speed - standstill > 0) {
    return m_speed;
  }
  const auto bestFather = m_bestFather.toStrongRef();
  if (!bestFather || bestFather->getIdent() == getIdent()) {
    m_speed = 0;
    m_speedSamples = 0;
    return m_speed;
  }
  const auto father = getFather(static_cast<unsigned int>(bestFather->getIdent()));
  if (!father || father->m_speed == notComputed) {
    return computeSpeedRec();
  }
  const double step = stepLength(*bestFather);
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
  const auto bestFather = m_bestFather.toStrongRef();
  const bool hasStep = bestFather && bestFather->getIdent() != getIdent();
  m_speedSamples = hasStep ? 1 : 0;
  m_speed = hasStep ? stepLength(*bestFather) : 0.0;
  return m_speed;
}

cv::Point3f MetaLPO::computeDirection() const {
  const auto bestFather = m_bestFather.toStrongRef();
  if (!bestFather || bestFather->getIdent() == getIdent()) {
    return {0.0F, 0.0F, 0.0F};
  }
  return Util::motionVector3D(bestFather->observation().getBoundingBox3D(),
                              observation().getBoundingBox3D());
}
