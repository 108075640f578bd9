#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "MeanShift.h"
#include "MeanShiftReference.h"
#include "matrix.h"

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

/// Everything that a clustering writes, sized for `data`.
struct Clustering {
  Matrix data;
  int nClusters = 0;
  std::vector<int> sizes;
  Matrix centers;
  std::vector<Matrix> covariances;
  std::vector<Matrix> members;

  explicit Clustering(const Matrix& points)
      : data(points),
        sizes(points.cols()),
        centers(points.rows(), points.cols()),
        covariances(points.cols(), Matrix(points.rows(), points.rows())),
        members(points.cols()) {
    centers.Null();
    for (Matrix& covariance : covariances) {
      covariance.Null();
    }
  }

  Clustering& meanShift(double bandwidth) {
    MeanShift().meanShift(data, bandwidth, &nClusters, sizes.data(), &centers, covariances.data(),
                          members.data());
    return *this;
  }
  Clustering& reference(double bandwidth) {
    meanShiftReference(data, bandwidth, &nClusters, sizes.data(), &centers, covariances.data(),
                       members.data());
    return *this;
  }

  /// The points of each cluster.
  std::vector<Values> groups() const {
    std::vector<Values> all;
    for (int k = 0; k < nClusters; ++k) {
      all.push_back(valuesOf(members[static_cast<std::size_t>(k)]).front());
    }
    return all;
  }
};

inline bool sameBits(const Matrix& a, const Matrix& b) {
  if (a.rows() != b.rows() || a.cols() != b.cols()) {
    return false;
  }
  for (std::size_t r = 0; r < a.rows(); ++r) {
    for (std::size_t c = 0; c < a.cols(); ++c) {
      // Which of several NaNs an operation hands on is the compiler's choice.
      const bool bothNaN = std::isnan(a(r, c)) && std::isnan(b(r, c));
      if (!bothNaN &&
          std::bit_cast<std::uint64_t>(a(r, c)) != std::bit_cast<std::uint64_t>(b(r, c))) {
        return false;
      }
    }
  }
  return true;
}

/// What differs first between two clusterings of the same points; empty if nothing does.
inline std::string difference(const Clustering& a, const Clustering& b) {
  if (a.nClusters != b.nClusters) {
    return "number of clusters";
  }
  if (!sameBits(a.centers, b.centers)) {
    return "centres";
  }
  for (std::size_t k = 0; k < static_cast<std::size_t>(a.nClusters); ++k) {
    if (a.sizes[k] != b.sizes[k] || !sameBits(a.members[k], b.members[k])) {
      return "members of cluster " + std::to_string(k);
    }
    if (!sameBits(a.covariances[k], b.covariances[k])) {
      return "covariance of cluster " + std::to_string(k);
    }
  }
  return "";
}
