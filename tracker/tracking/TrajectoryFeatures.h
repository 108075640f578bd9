#pragma once

#include "tracker/clustering/matrix.h"
#include "tracker/tracking/MetaLPO.h"

#include <opencv2/core/types.hpp>

/// Maps between the scene's ground plane in metres and the unit square that its bounds span.
struct SceneScale {
  float minX;
  float maxX;
  float minY;
  float maxY;

  double rangeX() const { return maxX - minX; }
  double rangeY() const { return maxY - minY; }
  cv::Point2f normalise(const cv::Point3f& scenePoint) const;
  double toSceneX(double x) const { return rangeX() * x + minX; }
  double toSceneY(double y) const { return rangeY() * y + minY; }
};

/// What the clustering sees of a person: one column with its normalised positions over the window
/// (x and y per frame, from the processed frame on) and below them its displacements per step, in
/// metres and without sign.
class TrajectoryFeatures {
 public:
  /// Room for `columns` persons over a window of `window` frames.
  TrajectoryFeatures(int window, int columns, const SceneScale& scale);

  static int positionRows(int window) { return 2 * window; }
  static int displacementRows(int window) { return 2 * window - 2; }
  static int rows(int window) { return positionRows(window) + displacementRows(window); }

  /// Fills the positions of a column along the best sons of a person; a frame without an
  /// observation is interpolated, after the last one the position stays. Throws
  /// `math::matrix_error` for a column that is not there.
  void fillPositions(std::size_t column, const MetaLPO& start);
  /// Fills the displacements of a column from its positions.
  void fillDisplacements(std::size_t column);
  const math::matrix<double>& data() const { return m_data; }

 private:
  struct Cursor;

  void put(Cursor& cursor, const cv::Point2f& position);
  void interpolate(Cursor& cursor, const cv::Point2f& from, const cv::Point2f& to, int frames);
  float sceneX(std::size_t row, std::size_t column);
  float sceneY(std::size_t row, std::size_t column);

  int m_window;
  SceneScale m_scale;
  math::matrix<double> m_data;
};
