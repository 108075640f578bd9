#include "host/grouping/TogetherChain.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double joinRate = 1.0 / 20;   // per second, from apart to together
constexpr double leaveRate = 1.0 / 40;  // per second, from together to apart
constexpr double rate = joinRate + leaveRate;
constexpr double evidenceTime = 0.5;    // seconds for which evidence counts once
constexpr double longestStep = 1.0;     // seconds for which it counts after a gap
constexpr double largestBelief = 12.0;  // log-odds; more could not be revised in time
constexpr double apartBefore = 3.0;     // log-odds
constexpr double trust = 0.3;           // of beliefs, see `certaintyOf()`

}  // namespace

double probabilityOf(double logOdds) {
  return 1.0 / (1.0 + std::exp(-logOdds));
}

double certaintyOf(double belief) {
  return probabilityOf(trust * belief);
}

double TogetherChain::next(double time, double evidence, bool isFresh, Passage& latest) {
  const double known = std::clamp(evidence, -largestEvidence, largestEvidence);
  const double passed = time - m_time;
  m_time = time;
  if (!m_hasStarted) {
    m_hasStarted = true;
    m_belief = isFresh ? known : known - apartBefore;
    return m_belief;
  }
  if (latest.passed != passed) {
    latest = {passed, 1.0 - std::exp(-rate * passed)};
  } else if (latest.before == m_belief && latest.known == known) {
    return m_belief = latest.after;
  }
  latest.before = m_belief;
  latest.known = known;
  const double before = probabilityOf(m_belief);
  const double now = before * (1.0 - leaveRate / rate * latest.change) +
                     (1.0 - before) * joinRate / rate * latest.change;
  const double belief =
      std::log(now / (1.0 - now)) + known * std::min(passed, longestStep) / evidenceTime;
  return m_belief = latest.after = std::clamp(belief, -largestBelief, largestBelief);
}

}  // namespace grouptracker
