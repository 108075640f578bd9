#pragma once

#include "host/grouping/PairFeatures.h"
#include "host/grouping/PersonTrack.h"

#include <deque>
#include <optional>

namespace grouptracker {

/// What two persons did at the ticks at which both were in view: the recent ones one by one, all
/// the earlier ones as sums.
class PairHistory {
 public:
  static constexpr double windowPast = 6.0;  ///< seconds
  static constexpr double recentPast = 1.0;  ///< seconds

  /// Adds the ticks that both tracks have got since the last time.
  void update(const PersonTrack& a, const PersonTrack& b);
  /// The features at a moment at which both are in view; moments grow from call to call. What was
  /// added last is the end of the window. The marks of arrival are left to the caller.
  PairFeatures featuresAt(double time);
  /// When both were first in view together, seconds.
  double firstTime() const { return m_firstTime; }

 private:
  /// Both at one tick.
  struct Row {
    double time = 0.0;     ///< seconds
    double seconds = 0.0;  ///< that the tick stands for
    double distance = 0.0;
    cv::Point2d apart;  ///< from one to the other
    double velocityDifference = 0.0;
    double speedA = 0.0;
    double speedB = 0.0;
    double standing = 0.0;  ///< 1 when both stand
    double nearerOthers = 0.0;
    double crowd = 0.0;
    double walking = 0.0;  ///< 0 to 1, how surely they walk
    double along = 0.0;
    double across = 0.0;
  };

  static Row rowOf(const TrackPoint& a, const TrackPoint& b);
  void add(Row row, double sinceTick);
  void describeWindow(PairFeatures& features) const;
  void describeRecent(double time, PairFeatures& features) const;
  void describeHistory(double time, PairFeatures& features) const;

  std::deque<Row> m_rows;   ///< of the window
  std::size_t m_nextA = 0;  ///< points of the tracks from here on are new
  std::size_t m_nextB = 0;
  std::optional<double> m_lastTime;  ///< of the latest row, seconds; none before the first
  double m_firstTime = 0.0;          ///< seconds
  double m_firstDistance = 0.0;      ///< metres
  // Sums since the first row.
  double m_seconds = 0.0;
  double m_closeSeconds = 0.0;  ///< within 1.2 m
  double m_nearSeconds = 0.0;   ///< within 2 m
  double m_way = 0.0;           ///< metres, within 2 m
};

}  // namespace grouptracker
