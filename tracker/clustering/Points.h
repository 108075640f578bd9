#pragma once

#include "tracker/clustering/matrix.h"

#include <cstddef>
#include <vector>

/// The columns of a matrix, each contiguous: what is compared and summed point by point is then
/// read from one place instead of from one row array per feature.
class Points {
 public:
  explicit Points(const math::matrix<double>& data);

  std::size_t count() const { return pointCount; }
  std::size_t dimension() const { return featureCount; }
  const double* operator[](std::size_t i) const { return columns.data() + i * featureCount; }

  /// The largest absolute value of a feature; infinite if one is infinite or not a number.
  double magnitude() const { return largestValue; }
  /// The feature with the greatest range, the one that tells most points apart; for finite points.
  std::size_t widestFeature() const { return widest; }

 private:
  void measure();

  std::size_t pointCount;
  std::size_t featureCount;
  std::vector<double> columns;
  double largestValue = 0.0;
  std::size_t widest = 0;
};
