#pragma once

#include "tracker/clustering/PointTable.h"
#include "tracker/clustering/Points.h"
#include "tracker/clustering/SearchRadius.h"
#include "tracker/clustering/matrix.h"

#include <cstddef>
#include <vector>

/// Sorts points into clusters by their modes: a point joins the first cluster whose centre lies
/// strictly within reach of its mode, or founds the next one. Centres move as points join, so the
/// order of the points matters.
///
/// Everything is written to the caller's arrays at once, point by point; of the centres the builder
/// keeps a rounded copy that is fast to search.
class ClusterBuilder {
 public:
  /// The caller's arrays, see `MeanShift`; `covariances` and `members` may be null.
  struct Output {
    int* nClusters;
    int* sizes;
    math::matrix<double>* centers;
    math::matrix<double>* covariances;
    math::matrix<double>* members;
  };

  /// `allPoints` and what `output` points to must outlive the builder.
  ClusterBuilder(const Points& allPoints, double reach, const Output& output);

  /// Puts a point, which climbed to `mode`, into its cluster.
  void add(std::size_t point, const double* mode);

 private:
  /// The first cluster within reach of the mode, or the number of clusters.
  std::size_t firstNear(const double* mode);
  void join(std::size_t cluster, std::size_t point, const double* mode);
  void found(std::size_t point, const double* mode);
  std::size_t clusterCount() const { return static_cast<std::size_t>(*m_out.nClusters); }
  /// Copies a centre out of the caller's matrix.
  const double* center(std::size_t cluster);
  void moveCenter(std::size_t cluster, const double* mode, double newSize);
  void setOffset(const double* point, const double* from);
  void requireComparableCenters() const;

  const Points& m_points;
  Output m_out;
  PointTable m_centers;
  SearchRadius m_radius;
  std::vector<double> m_place;   ///< of the centre at hand
  std::vector<double> m_offset;  ///< of a point from a centre
};
