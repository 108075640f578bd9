#pragma once

#include <cstddef>

/// Tells whether two points lie strictly within a distance of each other, always as
/// `sqrt(sum of squared differences, row by row) < length` does, but without roots, with as few
/// rows as possible, and for nearly all pairs in single precision.
///
/// A sum computed in single precision from rounded points is off by a bounded amount. Above
/// `surelyOutside()` and below `surelyInside()` that amount cannot matter; only in between the
/// exact sum has to decide.
class SearchRadius {
 public:
  /// `magnitude` bounds the absolute values of all coordinates, give or take a factor of 2. When it
  /// is infinite, all decisions are exact.
  SearchRadius(double length, double magnitude, std::size_t dimension);

  /// The exact answer for two points.
  bool contains(const double* a, const double* b) const;
  /// Whether the difference in one row alone puts two points outside: the squares of the other rows
  /// only add to it.
  bool excludes(double difference) const { return !(difference * difference < m_squareLimit); }

  float surelyOutside() const { return m_outside; }
  float surelyInside() const { return m_inside; }

 private:
  void boundSinglePrecision(double length, double magnitude);

  std::size_t m_rows;
  double m_squareLimit;  ///< a sum of squares is inside if it is below this
  float m_outside;       ///< infinite when single precision cannot tell
  float m_inside;        ///< 0 when single precision cannot tell
};
