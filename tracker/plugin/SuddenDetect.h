#pragma once

#include <string>

/// Settings of the motion analysis. They stand in the parameter file and are kept for it; the
/// grouping itself reads none of them.
class SuddenDetect {
 public:
  inline static int track_length = 0;       ///< frames of a point's track
  inline static double min_distance = 0.0;  ///< pixels between two sampled points
  inline static int gridSize = 0;  ///< pixels between two points when new ones are looked for
  inline static std::string gaussianGrid;  ///< file of the gaussian grid
  inline static double alpha = 0.0;
};
