#pragma once

#include <string>

/// Settings of the motion analysis. They stand in the parameter file and are kept for it; the
/// grouping itself reads none of them.
class SuddenDetect {
 public:
  static int track_length;          ///< frames of a point's track
  static double min_distance;       ///< pixels between two sampled points
  static int gridSize;              ///< pixels between two points when new ones are looked for
  static std::string gaussianGrid;  ///< file of the gaussian grid
  static double alpha;
};
