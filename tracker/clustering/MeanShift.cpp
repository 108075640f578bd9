#include "tracker/clustering/MeanShift.h"

#include "tracker/clustering/ClusterBuilder.h"
#include "tracker/clustering/ModeSearch.h"
#include "tracker/clustering/Points.h"

#include <cstddef>

void MeanShift::meanShift(const math::matrix<double>& data, double bandwidth, int* nClusters,
                          int* clusterSizes, math::matrix<double>* centers,
                          math::matrix<double>* covariances) {
  meanShift(data, bandwidth, nClusters, clusterSizes, centers, covariances, nullptr);
}

void MeanShift::meanShift(const math::matrix<double>& data, double bandwidth, int* nClusters,
                          int* clusterSizes, math::matrix<double>* centers,
                          math::matrix<double>* covariances, math::matrix<double>* members) {
  const Points points(data);
  if (points.count() == 0) {
    return;
  }
  ModeSearch modes(points, bandwidth);
  ClusterBuilder clusters(points, 2.0 * bandwidth,
                          {nClusters, clusterSizes, centers, covariances, members});
  for (std::size_t i = 0; i < points.count(); ++i) {
    clusters.add(i, modes.modeFrom(i));
  }
}
