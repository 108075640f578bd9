#include "host/evaluation/Assignment.h"

#include <algorithm>
#include <limits>

namespace grouptracker {

namespace {

/// Gives each row a column of its own at the least cost, row by row. Rows and columns are counted
/// from 1, 0 stands for none; there are at least as many columns as rows.
class LeastCost {
 public:
  LeastCost(const Matches& matches, bool isTurned)
      : m_matches(matches),
        m_isTurned(isTurned),
        m_rows(isTurned ? matches.columns() : matches.rows()),
        m_columns(isTurned ? matches.rows() : matches.columns()),
        m_rowPrice(m_rows + 1),
        m_columnPrice(m_columns + 1),
        m_rowOf(m_columns + 1),
        m_from(m_columns + 1) {}

  std::int64_t matched() {
    for (std::size_t row = 1; row <= m_rows; ++row) {
      assign(row);
    }
    std::int64_t sum = 0;
    for (std::size_t column = 1; column <= m_columns; ++column) {
      sum += m_rowOf[column] == 0 ? 0 : -cost(m_rowOf[column], column);
    }
    return sum;
  }

 private:
  std::int64_t cost(std::size_t row, std::size_t column) const {
    return -(m_isTurned ? m_matches.at(column - 1, row - 1) : m_matches.at(row - 1, column - 1));
  }

  /// Finds the cheapest way to a free column on which each row hands its column to the one before.
  void assign(std::size_t row) {
    std::vector<std::int64_t> distance(m_columns + 1, std::numeric_limits<std::int64_t>::max());
    std::vector<bool> isReached(m_columns + 1, false);
    m_rowOf[0] = row;
    std::size_t column = 0;
    do {
      isReached[column] = true;
      column = reachNext(column, distance, isReached);
    } while (m_rowOf[column] != 0);
    for (; column != 0; column = m_from[column]) {
      m_rowOf[column] = m_rowOf[m_from[column]];
    }
  }

  std::size_t reachNext(std::size_t last, std::vector<std::int64_t>& distance,
                        const std::vector<bool>& isReached) {
    const std::size_t row = m_rowOf[last];
    std::size_t nearest = 0;
    for (std::size_t column = 1; column <= m_columns; ++column) {
      if (isReached[column]) {
        continue;
      }
      const std::int64_t reduced = cost(row, column) - m_rowPrice[row] - m_columnPrice[column];
      if (reduced < distance[column]) {
        distance[column] = reduced;
        m_from[column] = last;
      }
      nearest = nearest == 0 || distance[column] < distance[nearest] ? column : nearest;
    }
    const std::int64_t step = distance[nearest];
    for (std::size_t column = 0; column <= m_columns; ++column) {
      if (isReached[column]) {
        m_rowPrice[m_rowOf[column]] += step;
        m_columnPrice[column] -= step;
      } else if (column != 0) {
        distance[column] -= step;
      }
    }
    return nearest;
  }

  const Matches& m_matches;
  bool m_isTurned;
  std::size_t m_rows;
  std::size_t m_columns;
  std::vector<std::int64_t> m_rowPrice;
  std::vector<std::int64_t> m_columnPrice;
  std::vector<std::size_t> m_rowOf;  ///< of each column
  std::vector<std::size_t> m_from;   ///< the column before on the way to each
};

}  // namespace

std::int64_t largestSum(const Matches& matches) {
  return LeastCost(matches, matches.rows() > matches.columns()).matched();
}

}  // namespace grouptracker
