#include "tracker/clustering/ClusterBuilder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <limits>

namespace {

using Matrix = math::matrix<double>;

/// The largest absolute value in the first columns of a matrix; infinite if one is not finite.
double magnitude(const Matrix& matrix, std::size_t columns) {
  double largest = 0.0;
  for (std::size_t r = 0; r < matrix.rows(); ++r) {
    for (std::size_t c = 0; c < columns; ++c) {
      const double value = std::fabs(matrix.row(r)[c]);
      largest =
          std::isfinite(value) ? std::max(largest, value) : std::numeric_limits<double>::infinity();
    }
  }
  return largest;
}

/// A product's element is summed from 0.0; adding it to an exact -0.0 shows.
double productElement(double a, double b) {
  return 0.0 + a * b;
}

/// The covariance of one point around its centre.
void startCovariance(Matrix& covariance, const std::vector<double>& offset) {
  const std::size_t size = offset.size();
  if (covariance.rows() != size || covariance.cols() != size) {
    covariance = Matrix(size, size);
  }
  for (std::size_t r = 0; r < size; ++r) {
    double* const row = covariance.row(r);
    std::transform(offset.begin(), offset.end(), row,
                   [left = offset[r]](double right) { return productElement(left, right); });
  }
}

/// Takes in a point as the `n`th; `offset` is its distance from the centre before that.
void extendCovariance(Matrix& covariance, const double* point, const double* newCenter,
                      const std::vector<double>& offset, double n) {
  const std::size_t size = offset.size();
  if (covariance.rows() != size || covariance.cols() != size) {
    covariance += Matrix(size, size);  // throws what a sum of such matrices throws
  }
  const double factor = 1.0 / n;
  for (std::size_t r = 0; r < size; ++r) {
    double* const row = covariance.row(r);
    const double left = point[r] - newCenter[r];
    for (std::size_t c = 0; c < size; ++c) {
      row[c] = ((n - 1.0) * row[c] + productElement(left, offset[c])) * factor;
    }
  }
}

Matrix indexMatrix(std::size_t point) {
  Matrix index(1, 1);
  index(0, 0) = static_cast<double>(point);
  return index;
}

}  // namespace

ClusterBuilder::ClusterBuilder(const Points& allPoints, double reach, const Output& output)
    : points(allPoints),
      out(output),
      centers(points.dimension(), points.count()),
      radius(reach, std::max(points.magnitude(), magnitude(*out.centers, clusterCount())),
             points.dimension()),
      place(points.dimension()),
      offset(points.dimension()) {
  if (out.centers->rows() != points.dimension()) {
    return;  // the first comparison reports it
  }
  for (std::size_t k = 0; k < clusterCount(); ++k) {
    centers.append(center(k));
  }
}

void ClusterBuilder::add(std::size_t point, const double* mode) {
  const std::size_t cluster = firstNear(mode);
  if (cluster < clusterCount()) {
    join(cluster, point, mode);
  } else {
    found(point, mode);
  }
}

std::size_t ClusterBuilder::firstNear(const double* mode) {
  if (clusterCount() > 0) {
    requireComparableCenters();
  }
  const auto isWithin = [&](std::size_t k) { return radius.contains(center(k), mode); };
  centers.aim(mode);
  for (std::size_t tile = 0; tile < centers.tileCount(); ++tile) {
    if (const std::uint32_t near = centers.within(tile, radius, isWithin); near != 0) {
      return tile * PointTable::tileSize + static_cast<std::size_t>(std::countr_zero(near));
    }
  }
  return clusterCount();
}

void ClusterBuilder::join(std::size_t cluster, std::size_t point, const double* mode) {
  const double n = ++out.sizes[cluster];
  setOffset(points[point], center(cluster));
  moveCenter(cluster, mode, n);
  if (out.covariances != nullptr) {
    extendCovariance(out.covariances[cluster], points[point], place.data(), offset, n);
  }
  if (out.members != nullptr) {
    out.members[cluster] &= indexMatrix(point);
  }
}

void ClusterBuilder::found(std::size_t point, const double* mode) {
  const std::size_t cluster = clusterCount();
  for (std::size_t r = 0; r < points.dimension(); ++r) {
    (*out.centers)(r, cluster) = mode[r];
  }
  centers.append(mode);
  out.sizes[cluster] = 1;
  if (out.covariances != nullptr) {
    requireComparableCenters();
    setOffset(points[point], mode);
    startCovariance(out.covariances[cluster], offset);
  }
  if (out.members != nullptr) {
    out.members[cluster] = indexMatrix(point);
  }
  *out.nClusters += 1;
}

/// The centre, which is at hand, becomes the running mean of the modes of its points.
void ClusterBuilder::moveCenter(std::size_t cluster, const double* mode, double newSize) {
  const double factor = 1.0 / newSize;
  for (std::size_t r = 0; r < place.size(); ++r) {
    place[r] = ((newSize - 1.0) * place[r] + mode[r]) * factor;
    (*out.centers)(r, cluster) = place[r];
  }
  centers.replace(cluster, place.data());
}

const double* ClusterBuilder::center(std::size_t cluster) {
  const Matrix& all = *out.centers;
  for (std::size_t r = 0; r < place.size(); ++r) {
    place[r] = all(r, cluster);
  }
  return place.data();
}

void ClusterBuilder::setOffset(const double* point, const double* from) {
  std::transform(point, point + offset.size(), from, offset.begin(), std::minus<>());
}

/// Centres with more features than the points are refused in the words of the subtraction.
void ClusterBuilder::requireComparableCenters() const {
  if (out.centers->rows() != points.dimension()) {
    Matrix(out.centers->rows()) -= Matrix(points.dimension());
  }
}
