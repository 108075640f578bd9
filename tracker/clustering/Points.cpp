#include "tracker/clustering/Points.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::size_t pointsAtATime = 8;
}  // namespace

Points::Points(const math::matrix<double>& data)
    : m_pointCount(data.cols()),
      m_featureCount(data.rows()),
      m_columns(m_pointCount * m_featureCount) {
  // A few points at a time: what is read as one cache line is then written to few others.
  for (std::size_t first = 0; first < m_pointCount; first += pointsAtATime) {
    const std::size_t end = std::min(m_pointCount, first + pointsAtATime);
    for (std::size_t r = 0; r < m_featureCount; ++r) {
      const double* const row = data.row(r);
      for (std::size_t i = first; i < end; ++i) {
        m_columns[i * m_featureCount + r] = row[i];
      }
    }
  }
  if (m_pointCount > 0) {
    measure();
  }
}

void Points::measure() {
  std::vector<double> low(m_featureCount, infinity);
  std::vector<double> high(m_featureCount, -infinity);
  std::vector<double> zero(m_featureCount, 0.0);
  for (std::size_t i = 0; i < m_pointCount; ++i) {
    const double* const point = (*this)[i];
    for (std::size_t r = 0; r < m_featureCount; ++r) {
      low[r] = std::min(low[r], point[r]);
      high[r] = std::max(high[r], point[r]);
      zero[r] += point[r] - point[r];  // not 0 for what is infinite or not a number
    }
  }
  for (std::size_t r = 0; r < m_featureCount; ++r) {
    const double larger = zero[r] == 0.0 ? std::max(-low[r], high[r]) : infinity;
    m_largestValue = std::max(m_largestValue, larger);
    if (high[r] - low[r] > high[m_widest] - low[m_widest]) {
      m_widest = r;
    }
  }
}
