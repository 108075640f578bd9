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
    throw math::matrix_error(math::additionError);  // as the sum of such matrices does
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
    : m_points(allPoints),
      m_out(output),
      m_centers(m_points.dimension(), m_points.count()),
      m_radius(reach, std::max(m_points.magnitude(), magnitude(*m_out.centers, clusterCount())),
               m_points.dimension()),
      m_place(m_points.dimension()),
      m_offset(m_points.dimension()) {
  if (m_out.centers->rows() != m_points.dimension()) {
    return;  // the first comparison reports it
  }
  for (std::size_t k = 0; k < clusterCount(); ++k) {
    m_centers.append(center(k));
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
  const auto isWithin = [&](std::size_t k) { return m_radius.contains(center(k), mode); };
  m_centers.aim(mode);
  for (std::size_t tile = 0; tile < m_centers.tileCount(); ++tile) {
    if (const std::uint32_t near = m_centers.within(tile, m_radius, isWithin); near != 0) {
      return tile * PointTable::tileSize + static_cast<std::size_t>(std::countr_zero(near));
    }
  }
  return clusterCount();
}

void ClusterBuilder::join(std::size_t cluster, std::size_t point, const double* mode) {
  const double n = ++m_out.sizes[cluster];
  setOffset(m_points[point], center(cluster));
  moveCenter(cluster, mode, n);
  if (m_out.covariances != nullptr) {
    extendCovariance(m_out.covariances[cluster], m_points[point], m_place.data(), m_offset, n);
  }
  if (m_out.members != nullptr) {
    m_out.members[cluster] &= indexMatrix(point);
  }
}

void ClusterBuilder::found(std::size_t point, const double* mode) {
  const std::size_t cluster = clusterCount();
  for (std::size_t r = 0; r < m_points.dimension(); ++r) {
    (*m_out.centers)(r, cluster) = mode[r];
  }
  m_centers.append(mode);
  m_out.sizes[cluster] = 1;
  if (m_out.covariances != nullptr) {
    requireComparableCenters();
    setOffset(m_points[point], mode);
    startCovariance(m_out.covariances[cluster], m_offset);
  }
  if (m_out.members != nullptr) {
    m_out.members[cluster] = indexMatrix(point);
  }
  *m_out.nClusters += 1;
}

/// The centre, which is at hand, becomes the running mean of the modes of its points.
void ClusterBuilder::moveCenter(std::size_t cluster, const double* mode, double newSize) {
  const double factor = 1.0 / newSize;
  for (std::size_t r = 0; r < m_place.size(); ++r) {
    m_place[r] = ((newSize - 1.0) * m_place[r] + mode[r]) * factor;
    (*m_out.centers)(r, cluster) = m_place[r];
  }
  m_centers.replace(cluster, m_place.data());
}

const double* ClusterBuilder::center(std::size_t cluster) {
  const Matrix& all = *m_out.centers;
  for (std::size_t r = 0; r < m_place.size(); ++r) {
    m_place[r] = all(r, cluster);
  }
  return m_place.data();
}

void ClusterBuilder::setOffset(const double* point, const double* from) {
  std::transform(point, point + m_offset.size(), from, m_offset.begin(), std::minus<>());
}

/// Centres with more features than the points are refused in the words of the subtraction.
void ClusterBuilder::requireComparableCenters() const {
  if (m_out.centers->rows() != m_points.dimension()) {
    throw math::matrix_error(math::subtractionError);
  }
}
