#pragma once

#include "tracker/clustering/matrix.h"

#include <cstddef>
#include <vector>

/// The columns of a matrix, each contiguous: what is compared and summed point by point is then
/// read from one place instead of from one row array per feature.
class Points {
 public:
  explicit Points(const math::matrix<double>& data);

  std::size_t count() const { return m_pointCount; }
  std::size_t dimension() const { return m_featureCount; }
  const double* operator[](std::size_t i) const { return m_columns.data() + i * m_featureCount; }

  /// The largest absolute value of a feature; infinite if one is infinite or not a number.
  double magnitude() const { return m_largestValue; }
  /// The feature with the greatest range, the one that tells most points apart; for finite points.
  std::size_t widestFeature() const { return m_widest; }

 private:
  void measure();

  std::size_t m_pointCount;
  std::size_t m_featureCount;
  std::vector<double> m_columns;
  double m_largestValue = 0.0;
  std::size_t m_widest = 0;
};
