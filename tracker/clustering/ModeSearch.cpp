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
  RunningMean(double* place, std::size_t rows) : mean(place), dimension(rows) {
    std::fill_n(mean, dimension, 0.0);
  }

  void add(const double* point) {
    for (std::size_t r = 0; r < dimension; ++r) {
      mean[r] += point[r];
    }
    count += 1.0;
  }

  double size() const { return count; }

  /// Without any point the mean stays the origin.
  void finish() {
    if (count > 0.0) {
      const double factor = 1.0 / count;
      std::transform(mean, mean + dimension, mean, [factor](double x) { return x * factor; });
    }
  }

 private:
  double* mean;
  std::size_t dimension;
  double count = 0.0;
};

}  // namespace

ModeSearch::ModeSearch(const Points& allPoints, double radius)
    : points(allPoints),
      bandwidth(radius),
      kernel(radius, allPoints.magnitude(), allPoints.dimension()) {
  const bool steps = bandwidth > 0.0 && bandwidth < initialShift;
  if (steps && std::isfinite(points.magnitude()) && points.dimension() > 0) {
    neighbours.emplace(points, kernel);
    means.reserve(points.count() * points.dimension());
    meanOf.reserve(points.count());
  }
  for (auto& buffer : buffers) {
    buffer.resize(points.dimension());
  }
}

const double* ModeSearch::modeFrom(std::size_t point) {
  const double* estimate = points[point];
  double shift = initialShift;
  bool knowsNeighbours = neighbours.has_value();
  // A climb that stands still has ended, even if a negative bandwidth asks for less.
  while (shift > bandwidth && shift != 0.0) {
    const double* const mean = knowsNeighbours ? meanOfNeighbours(point) : meanAround(estimate);
    shift = distance(estimate, mean, points.dimension());
    estimate = mean;
    knowsNeighbours = false;
  }
  return estimate;
}

// Points of one compact cluster all have the same neighbours and hence the same mean. If a point
// shares its neighbours with any before it, then with the first of them.
const double* ModeSearch::meanOfNeighbours(std::size_t point) {
  const std::size_t first = neighbours->first(point);
  if (first < point && neighbours->same(first, point)) {
    meanOf.push_back(meanOf[first]);
    return means.data() + meanOf[point];
  }
  meanOf.push_back(keptMeans);
  means.resize(keptMeans + points.dimension());
  RunningMean mean(means.data() + keptMeans, points.dimension());
  neighbours->forEach(point, [&](std::size_t neighbour) { mean.add(points[neighbour]); });
  mean.finish();
  if (mean.size() > 1.0) {  // nobody asks for a loner's mean again, so its place is free
    keptMeans += points.dimension();
  }
  return means.data() + meanOf[point];
}

const double* ModeSearch::meanAround(const double* estimate) {
  auto& buffer = buffers[estimate == buffers[0].data() ? 1 : 0];
  RunningMean mean(buffer.data(), points.dimension());
  for (std::size_t i = 0; i < points.count(); ++i) {
    if (kernel.contains(points[i], estimate)) {
      mean.add(points[i]);
    }
  }
  mean.finish();
  return buffer.data();
}
