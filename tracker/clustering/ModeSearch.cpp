#include "tracker/clustering/ModeSearch.h"

#include <algorithm>
#include <cmath>

namespace {

/// Stands for the step before the first; a bandwidth that is not below it asks for no step at all.
constexpr double initialShift = 100000.0;

double distance(const double* a, const double* b, std::size_t dimension) {
  double sum = 0.0;
  for (std::size_t r = 0; r < dimension; ++r) {
    const double difference = a[r] - b[r];
    sum += difference * difference;
  }
  return std::sqrt(sum);
}

/// A mean in the making, in place. Points are added in ascending order, as the sum depends on it.
class RunningMean {
 public:
  RunningMean(double* place, std::size_t rows) : m_mean(place), m_dimension(rows) {
    std::fill_n(m_mean, m_dimension, 0.0);
  }

  void add(const double* point) {
    for (std::size_t r = 0; r < m_dimension; ++r) {
      m_mean[r] += point[r];
    }
    m_count += 1.0;
  }

  double size() const { return m_count; }

  /// Without any point the mean stays the origin.
  void finish() {
    if (m_count > 0.0) {
      const double factor = 1.0 / m_count;
      std::transform(m_mean, m_mean + m_dimension, m_mean,
                     [factor](double x) { return x * factor; });
    }
  }

 private:
  double* m_mean;
  std::size_t m_dimension;
  double m_count = 0.0;
};

}  // namespace

ModeSearch::ModeSearch(const Points& allPoints, double radius)
    : m_points(allPoints),
      m_bandwidth(radius),
      m_kernel(radius, allPoints.magnitude(), allPoints.dimension()) {
  const bool steps = m_bandwidth > 0.0 && m_bandwidth < initialShift;
  if (steps && std::isfinite(m_points.magnitude()) && m_points.dimension() > 0) {
    m_neighbours.emplace(m_points, m_kernel);
    m_means.reserve(m_points.count() * m_points.dimension());
    m_meanOf.reserve(m_points.count());
  }
  for (auto& buffer : m_buffers) {
    buffer.resize(m_points.dimension());
  }
}

const double* ModeSearch::modeFrom(std::size_t point) {
  const double* estimate = m_points[point];
  double shift = initialShift;
  bool knowsNeighbours = m_neighbours.has_value();
  // A climb that stands still has ended, even if a negative bandwidth asks for less.
  while (shift > m_bandwidth && shift != 0.0) {
    const double* const mean = knowsNeighbours ? meanOfNeighbours(point) : meanAround(estimate);
    shift = distance(estimate, mean, m_points.dimension());
    estimate = mean;
    knowsNeighbours = false;
  }
  return estimate;
}

// Points of one compact cluster all have the same neighbours and hence the same mean. If a point
// shares its neighbours with any before it, then with the first of them.
const double* ModeSearch::meanOfNeighbours(std::size_t point) {
  const std::size_t first = m_neighbours->first(point);
  if (first < point && m_neighbours->same(first, point)) {
    m_meanOf.push_back(m_meanOf[first]);
    return m_means.data() + m_meanOf[point];
  }
  m_meanOf.push_back(m_keptMeans);
  m_means.resize(m_keptMeans + m_points.dimension());
  RunningMean mean(m_means.data() + m_keptMeans, m_points.dimension());
  m_neighbours->forEach(point, [&](std::size_t neighbour) { mean.add(m_points[neighbour]); });
  mean.finish();
  if (mean.size() > 1.0) {  // nobody asks for a loner's mean again, so its place is free
    m_keptMeans += m_points.dimension();
  }
  return m_means.data() + m_meanOf[point];
}

const double* ModeSearch::meanAround(const double* estimate) {
  auto& buffer = m_buffers[estimate == m_buffers[0].data() ? 1 : 0];
  RunningMean mean(buffer.data(), m_points.dimension());
  for (std::size_t i = 0; i < m_points.count(); ++i) {
    if (m_kernel.contains(m_points[i], estimate)) {
      mean.add(m_points[i]);
    }
  }
  mean.finish();
  return buffer.data();
}
