#pragma once

#include "tracker/clustering/matrix.h"

/// What `MeanShift::meanShift` computes, written down as plainly as possible and at the pace that
/// this has: matrix by matrix, every pair of points by its distance. It is what the fast way is
/// held against, bit by bit, in tests and benchmarks; arguments and errors are the same.
void meanShiftReference(const math::matrix<double>& data, double bandwidth, int* nClusters,
                        int* clusterSizes, math::matrix<double>* centers,
                        math::matrix<double>* covariances, math::matrix<double>* members);
