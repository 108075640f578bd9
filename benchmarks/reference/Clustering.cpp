#include "benchmarks/reference/Clustering.h"

#include "benchmarks/reference/MeanShiftReference.h"
#include "tracker/clustering/MeanShift.h"

#include <bit>
#include <cmath>
#include <cstdint>

Clustering::Clustering(const math::matrix<double>& points)
    : data(points),
      sizes(points.cols()),
      centers(points.rows(), points.cols()),
      members(points.cols()) {
  centers.Null();
  covariances.reserve(points.cols());
  for (std::size_t k = 0; k < points.cols(); ++k) {
    covariances.emplace_back(points.rows(), points.rows()).Null();
  }
}

Clustering& Clustering::meanShift(double bandwidth) {
  MeanShift().meanShift(data, bandwidth, &nClusters, sizes.data(), &centers, covariances.data(),
                        members.data());
  return *this;
}

Clustering& Clustering::reference(double bandwidth) {
  meanShiftReference(data, bandwidth, &nClusters, sizes.data(), &centers, covariances.data(),
                     members.data());
  return *this;
}

bool sameBits(const math::matrix<double>& a, const math::matrix<double>& b) {
  if (a.rows() != b.rows() || a.cols() != b.cols()) {
    return false;
  }
  for (std::size_t r = 0; r < a.rows(); ++r) {
    for (std::size_t c = 0; c < a.cols(); ++c) {
      const bool bothNaN = std::isnan(a(r, c)) && std::isnan(b(r, c));
      if (!bothNaN &&
          std::bit_cast<std::uint64_t>(a(r, c)) != std::bit_cast<std::uint64_t>(b(r, c))) {
        return false;
      }
    }
  }
  return true;
}

std::string difference(const Clustering& a, const Clustering& b) {
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
