#pragma once

#include "benchmarks/reference/Clustering.h"
#include "tracker/clustering/matrix.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

using Matrix = math::matrix<double>;
using Values = std::vector<double>;

inline Matrix matrixOf(std::initializer_list<Values> rows) {
  Matrix made(rows.size(), rows.size() == 0 ? 0 : rows.begin()->size());
  for (std::size_t r = 0; r < made.rows(); ++r) {
    std::copy(rows.begin()[r].begin(), rows.begin()[r].end(), made.row(r));
  }
  return made;
}

inline std::vector<Values> valuesOf(const Matrix& matrix) {
  std::vector<Values> rows;
  for (std::size_t r = 0; r < matrix.rows(); ++r) {
    rows.emplace_back(matrix.row(r), matrix.row(r) + matrix.cols());
  }
  return rows;
}

inline std::string messageOf(const auto& call) {
  try {
    call();
  } catch (const math::matrix_error& error) {
    return error.what();
  }
  return "nothing thrown";
}

/// The points of each cluster.
inline std::vector<Values> groupsOf(const Clustering& clustering) {
  std::vector<Values> all;
  for (int k = 0; k < clustering.nClusters; ++k) {
    all.push_back(valuesOf(clustering.members[static_cast<std::size_t>(k)]).front());
  }
  return all;
}
