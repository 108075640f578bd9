#include "benchmarks/reference/MeanShiftReference.h"

#include <cmath>
#include <cstddef>

namespace {

using Matrix = math::matrix<double>;

/// Longer than any step may be required to be, so that a climb begins.
constexpr double initialShift = 100000.0;

double norm(const Matrix& vector) {
  double sum = 0.0;
  for (std::size_t r = 0; r < vector.rows(); ++r) {
    sum += vector(r, 0) * vector(r, 0);
  }
  return std::sqrt(sum);
}

/// Mean of the points strictly inside the kernel around `estimate`; the origin if there are none.
Matrix kernelMean(Matrix& data, const Matrix& estimate, double bandwidth) {
  Matrix mean(data.rows());
  mean.Null();
  double count = 0.0;
  for (std::size_t j = 0; j < data.cols(); ++j) {
    const Matrix point = data.Column(j);
    if (norm(point - estimate) < bandwidth) {
      mean += point;
      count += 1.0;
    }
  }
  if (count > 0.0) {
    mean *= 1.0 / count;
  }
  return mean;
}

Matrix climbToMode(Matrix& data, const Matrix& start, double bandwidth) {
  Matrix estimate = start;
  double shift = initialShift;
  // A climb that stands still has ended, even if a negative bandwidth asks for less.
  while (shift > bandwidth && shift != 0.0) {
    const Matrix mean = kernelMean(data, estimate, bandwidth);
    shift = norm(estimate - mean);
    estimate = mean;
  }
  return estimate;
}

int firstClusterWithin(Matrix& centers, int nClusters, const Matrix& mode, double radius) {
  for (int k = 0; k < nClusters; ++k) {
    if (norm(centers.Column(k) - mode) < radius) {
      return k;
    }
  }
  return nClusters;
}

Matrix outerProduct(const Matrix& a, const Matrix& b) {
  return a * ~b;
}

}  // namespace

void meanShiftReference(const math::matrix<double>& data, double bandwidth, int* nClusters,
                        int* clusterSizes, math::matrix<double>* centers,
                        math::matrix<double>* covariances, math::matrix<double>* members) {
  Matrix points = data;
  for (std::size_t i = 0; i < points.cols(); ++i) {
    const Matrix point = points.Column(i);
    const Matrix mode = climbToMode(points, point, bandwidth);
    const int k = firstClusterWithin(*centers, *nClusters, mode, 2.0 * bandwidth);
    Matrix index(1, 1);
    index(0, 0) = static_cast<double>(i);

    if (k < *nClusters) {
      clusterSizes[k] += 1;
      const double n = clusterSizes[k];
      const Matrix oldCenter = centers->Column(k);
      for (std::size_t r = 0; r < points.rows(); ++r) {
        (*centers)(r, k) = ((n - 1.0) * (*centers)(r, k) + mode(r, 0)) * (1.0 / n);
      }
      if (covariances != nullptr) {
        covariances[k] *= n - 1.0;
        covariances[k] += outerProduct(point - centers->Column(k), point - oldCenter);
        covariances[k] *= 1.0 / n;
      }
      if (members != nullptr) {
        members[k] &= index;
      }
      continue;
    }

    for (std::size_t r = 0; r < points.rows(); ++r) {
      (*centers)(r, k) = mode(r, 0);
    }
    clusterSizes[k] = 1;
    if (covariances != nullptr) {
      const Matrix offset = point - centers->Column(k);
      covariances[k] = outerProduct(offset, offset);
    }
    if (members != nullptr) {
      members[k] = index;
    }
    *nClusters += 1;
  }
}
