#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace grouptracker {

/// How much each of some rows has in common with each of some columns, 0 at first.
class Matches {
 public:
  Matches(std::size_t rows, std::size_t columns)
      : m_rows(rows), m_columns(columns), m_values(rows * columns) {}

  std::size_t rows() const { return m_rows; }
  std::size_t columns() const { return m_columns; }
  std::int64_t at(std::size_t row, std::size_t column) const {
    return m_values[row * m_columns + column];
  }
  void set(std::size_t row, std::size_t column, std::int64_t value) {
    m_values[row * m_columns + column] = value;
  }

 private:
  std::size_t m_rows;
  std::size_t m_columns;
  std::vector<std::int64_t> m_values;
};

/// The largest sum of values of which no two share a row or a column. None of the values is
/// negative. Hungarian method with shortest augmenting paths [Kuhn 1955; Jonker and Volgenant
/// 1987].
std::int64_t largestSum(const Matches& matches);

}  // namespace grouptracker
