#pragma once

#include "tracker/clustering/matrix.h"

#include <cstddef>

/// How people walk: each alone, or most of them in company.
enum class Company { sparse, dense };

/// What the clustering mode makes of the people of one frame.
struct TrajectoryPoints {
  math::matrix<double> data;  ///< one person per column
  double bandwidth;           ///< a tolerance that suits them
};

/// People who cross a scene of 60 x 40 metres: in a column the positions of the next ten steps as
/// fractions of the scene, x before y, then half the distances walked per step in metres; 38
/// features. The same arguments give the same points.
TrajectoryPoints makeTrajectoryPoints(Company company, std::size_t people);
