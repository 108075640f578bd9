#include "tracker/tracking/TrajectoryFeatures.h"

#include "tracker/tracking/GroupTracker.h"

#include <cmath>
#include <cstdlib>

/// The place in a column that is written next.
struct TrajectoryFeatures::Cursor {
  std::size_t column;
  int row = 0;
};

cv::Point2f SceneScale::normalise(const cv::Point3f& scenePoint) const {
  return {static_cast<float>((scenePoint.x - minX) / rangeX()),
          static_cast<float>((scenePoint.y - minY) / rangeY())};
}

TrajectoryFeatures::TrajectoryFeatures(int window, int columns, const SceneScale& scale)
    : m_window(window),
      m_scale(scale),
      m_data(static_cast<std::size_t>(rows(window)), static_cast<std::size_t>(columns)) {}

void TrajectoryFeatures::put(Cursor& cursor, const cv::Point2f& position) {
  const auto row = static_cast<std::size_t>(cursor.row);
  m_data(row, cursor.column) = position.x;
  m_data(row + 1, cursor.column) = position.y;
  cursor.row += 2;
}

void TrajectoryFeatures::fillPositions(std::size_t column, const MetaLPO& start) {
  const MetaLPO* person = &start;
  const int lastRow = positionRows(m_window) - 1;
  const int firstFrame = static_cast<int>(person->getFrame());
  Cursor cursor{column};
  cv::Point2f position = m_scale.normalise(person->observation().getPosition());
  while (cursor.row / 2 < m_window) {
    const int frames = static_cast<int>(person->getFrame()) - firstFrame - cursor.row / 2;
    const cv::Point2f next = m_scale.normalise(person->observation().getPosition());
    if (frames > 0) {
      interpolate(cursor, position, next, frames);
    }
    position = next;
    if (person->getBestSonScore() > GroupTracker::minReliabilityBest) {
      if (const MetaLPO* son = person->bestSonNode()) {
        person = son;
      }
    }
    if (cursor.row >= lastRow) {
      return;
    }
    put(cursor, position);
  }
}

void TrajectoryFeatures::interpolate(Cursor& cursor, const cv::Point2f& from, const cv::Point2f& to,
                                     int frames) {
  // The step leads downwards whatever the direction of motion: a gap in a track stands out the same
  // way for everybody.
  const float stepX =
      static_cast<float>(static_cast<double>(-std::abs(from.x - to.x)) / (frames + 1));
  const float stepY =
      static_cast<float>(static_cast<double>(-std::abs(from.y - to.y)) / (frames + 1));
  const int lastRow = positionRows(m_window) - 1;
  for (int s = 1; s <= frames && cursor.row < lastRow; ++s) {
    const auto factor = static_cast<float>(s);
    put(cursor, {stepX * factor + from.x, stepY * factor + from.y});
  }
}

float TrajectoryFeatures::sceneX(std::size_t row, std::size_t column) {
  return static_cast<float>(m_scale.toSceneX(m_data(row, column)));
}

float TrajectoryFeatures::sceneY(std::size_t row, std::size_t column) {
  return static_cast<float>(m_scale.toSceneY(m_data(row, column)));
}

void TrajectoryFeatures::fillDisplacements(std::size_t column) {
  const auto positions = static_cast<std::size_t>(positionRows(m_window));
  // The first pass always runs, so a window of a single frame addresses rows that are not there.
  int u = 0;
  do {
    const auto row = static_cast<std::size_t>(u);
    m_data(positions + row, column) = std::abs(sceneX(row + 2, column) - sceneX(row, column)) * 0.5;
    m_data(positions + row + 1, column) =
        std::abs(sceneY(row + 3, column) - sceneY(row + 1, column)) * 0.5;
    u += 2;
  } while (u <= 2 * m_window - 4);
}
