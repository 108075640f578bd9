#pragma once

#include "tracker/clustering/matrix.h"

/// Groups points into clusters by mean shift with a flat kernel: every point climbs to the mean of
/// the points around it, and points whose climbs end close together form a cluster. Which clusters
/// come out depends on the order of the points.
///
/// `data` holds one point per column. `bandwidth` is the radius of the kernel in the units of the
/// data; a climb ends when a step is at most that long, and clusters take up points that end within
/// twice of it.
///
/// The caller owns and sizes what is written: with M clusters possible (those present and one more
/// per point) `centers` has a row per feature and M columns, `clusterSizes`, `covariances` and
/// `members` have M elements. `nClusters` is the number of clusters already present, usually 0, and
/// afterwards the number of all. Column k and element k belong to cluster k: its centre, how many
/// points it has, the running covariance of its points around its centre, and the indices of its
/// points as one row. Nothing beyond the last cluster is touched.
///
/// `covariances` may be null: who does not read them should not pay for them, as they hold far more
/// numbers than the rest. Sizes that do not fit throw `math::matrix_error`; what was written until
/// then stays.
class MeanShift {
 public:
  MeanShift() = default;
  ~MeanShift() = default;

  void meanShift(const math::matrix<double>& data, double bandwidth, int* nClusters,
                 int* clusterSizes, math::matrix<double>* centers,
                 math::matrix<double>* covariances);

  /// The same, and tells which points each cluster has; `members` may be null as well.
  void meanShift(const math::matrix<double>& data, double bandwidth, int* nClusters,
                 int* clusterSizes, math::matrix<double>* centers,
                 math::matrix<double>* covariances, math::matrix<double>* members);
};
