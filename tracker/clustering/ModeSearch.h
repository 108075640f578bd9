#pragma once

#include "tracker/clustering/NeighbourSets.h"
#include "tracker/clustering/Points.h"
#include "tracker/clustering/SearchRadius.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

/// Climbs from points to their modes: again and again to the mean of the points strictly inside the
/// kernel, until a step is at most as long as the kernel's radius.
///
/// The first step starts from a point, and the neighbours of all points are found together. With
/// finite points it is nearly always the last one, since the mean of points within the radius lies
/// within the radius; only rounding leads further. Everything else, such as a radius that is not
/// positive, takes the general way.
class ModeSearch {
 public:
  /// `allPoints` must outlive the search.
  ModeSearch(const Points& allPoints, double radius);

  /// Where the climb from a point ends. Points are asked for in ascending order; the answer is
  /// valid until the next one.
  const double* modeFrom(std::size_t point);

 private:
  const double* meanOfNeighbours(std::size_t point);
  const double* meanAround(const double* estimate);

  const Points& m_points;
  double m_bandwidth;
  SearchRadius m_kernel;
  std::optional<NeighbourSets> m_neighbours;  ///< when the first step takes the fast way
  std::vector<double> m_means;        ///< one after the other, of the different neighbour sets
  std::size_t m_keptMeans = 0;        ///< numbers in `m_means` that are still needed
  std::vector<std::size_t> m_meanOf;  ///< where the mean of each point's neighbours begins
  std::vector<double> m_buffers[2];   ///< the last two estimates of the general way
};
