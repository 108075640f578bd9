#pragma once

#include "tracker/clustering/matrix.h"

#include <string>
#include <vector>

/// A clustering of points: everything that a mean shift writes, sized for it and cleared. It is
/// computed in either way, from where the last one left it, and compared.
struct Clustering {
  math::matrix<double> data;
  int nClusters = 0;
  std::vector<int> sizes;
  math::matrix<double> centers;
  std::vector<math::matrix<double>> covariances;
  std::vector<math::matrix<double>> members;

  explicit Clustering(const math::matrix<double>& points);

  Clustering& meanShift(double bandwidth);
  Clustering& reference(double bandwidth);
};

/// Whether all elements have the same bits. All NaN are equal: which of several an operation hands
/// on is the compiler's choice.
bool sameBits(const math::matrix<double>& a, const math::matrix<double>& b);

/// What differs first between two clusterings of the same points; empty if nothing does.
std::string difference(const Clustering& a, const Clustering& b);
