#include "tracker/clustering/SearchRadius.h"

#include <cmath>
#include <limits>

namespace {

constexpr double farthest = std::numeric_limits<double>::infinity();

/// The smallest double whose root is not below `length`: comparing a sum with it is comparing the
/// root of the sum with `length`, as roots are rounded monotonously. It lies next to the square of
/// the length, above it only where the square underflows.
double exactSquareLimit(double length) {
  if (!(length > 0.0)) {
    return 0.0;  // nothing is nearer than that
  }
  double limit = length * length;
  while (limit > 0.0 && !(std::sqrt(std::nextafter(limit, 0.0)) < length)) {
    limit = std::nextafter(limit, 0.0);
  }
  while (limit < farthest && std::sqrt(limit) < length) {
    limit = std::nextafter(limit, farthest);
  }
  return limit;
}

// Rounding a coordinate to single precision moves it by 2^-24 of its size. Two coordinates, and
// twice the magnitude, since a mean of points may be rounded beyond them.
constexpr double coordinateError = 0x1p-22;
constexpr double smallestNormalFloat = 0x1p-126;
// Squares between these neither overflow nor lose digits when they are summed in single precision.
constexpr double leastSquare = 1e-30;
constexpr double greatestSquare = 1e37;

}  // namespace

SearchRadius::SearchRadius(double length, double magnitude, std::size_t dimension)
    : m_rows(dimension),
      m_squareLimit(exactSquareLimit(length)),
      m_outside(std::numeric_limits<float>::infinity()),
      m_inside(0.0F) {
  boundSinglePrecision(length, magnitude);
}

bool SearchRadius::contains(const double* a, const double* b) const {
  double sum = 0.0;
  for (std::size_t r = 0; r < m_rows; ++r) {
    const double difference = a[r] - b[r];
    sum += difference * difference;
    // Terms are never negative and rounding is monotone: a sum that reached the limit stays there.
    if (!(sum < m_squareLimit)) {
      return false;
    }
  }
  return sum < m_squareLimit;
}

// Per coordinate the rounded difference is off by an absolute error, hence the distance by `slack`
// at most; the arithmetic on it adds half an ulp per operation, hence the relative error, taken
// twice as large as it can be. The exact sum's own rounding is far below that.
void SearchRadius::boundSinglePrecision(double length, double magnitude) {
  if (!(length > 0.0)) {
    return;
  }
  const double count = static_cast<double>(m_rows);
  const double slack = std::sqrt(count) * (magnitude * coordinateError + smallestNormalFloat);
  const double relativeError = (count + 8.0) * 0x1p-23;

  const double farthest = (length + slack) * (1.0 + relativeError);
  const double farthestSquare = farthest * farthest;
  if (!(farthestSquare > leastSquare && farthestSquare < greatestSquare)) {
    return;
  }
  m_outside = static_cast<float>(farthestSquare);

  // Half the length must remain, or the relative margin below would not cover the exact rounding.
  const double nearest = (length - slack) * (1.0 - relativeError);
  if (slack < length / 2.0 && nearest * nearest > leastSquare) {
    m_inside = static_cast<float>(nearest * nearest);
  }
}
