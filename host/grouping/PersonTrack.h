#pragma once

#include <opencv2/core/types.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <deque>
#include <limits>
#include <optional>

namespace grouptracker {

/// Who else is around a person at one moment.
struct Surroundings {
  static constexpr std::size_t most = 5;
  static constexpr double radius = 3.0;  ///< metres

  /// Distances to those who are nearest, ascending, metres; infinite where there are fewer.
  std::array<double, most> nearest = nobody();
  int within3Metres = 0;  ///< others that are nearer than three metres

  void add(double distance);
  /// The distance from which on another changes nothing here, metres.
  double reach() const { return std::max(nearest.back(), radius); }
  /// How many of the nearest are nearer than a distance.
  int nearerThan(double distance) const;

 private:
  static constexpr std::array<double, most> nobody() {
    std::array<double, most> distances{};
    distances.fill(std::numeric_limits<double>::infinity());
    return distances;
  }
};

/// A person at one tick.
struct TrackPoint {
  double time = 0.0;       ///< seconds
  double sinceTick = 0.0;  ///< seconds since the tick before, whoever was in view at it
  cv::Point2d place;       ///< on the ground, metres
  cv::Point2d velocity{};  ///< over the last 1.2 s, metres per second
  double speed = 0.0;      ///< length of the velocity
  Surroundings around{};
};

/// Somebody's stay from a moment on, without a tick out of view.
struct MeanStay {
  double first = 0.0;  ///< tick, seconds
  double last = 0.0;   ///< tick, seconds
  cv::Point2d mean;    ///< place, weighted by the seconds that each tick stands for, metres
};

/// Where one person was, tick by tick, and how it came into view. The points have numbers that stay
/// when old ones are forgotten.
class PersonTrack {
 public:
  /// `hasLookAhead`: whether the first point, which has no past, may take the velocity of the
  /// second.
  PersonTrack(double time, const cv::Point2d& place, bool hasLookAhead);

  /// Adds the point of a tick; its velocity is found here.
  void add(TrackPoint point);
  void forgetBefore(double time);

  std::size_t begin() const { return m_forgotten; }
  std::size_t end() const { return m_forgotten + m_points.size(); }
  const TrackPoint& latest() const { return m_points.back(); }
  const TrackPoint& operator[](std::size_t number) const { return m_points[number - m_forgotten]; }

  double firstSeen() const { return m_firstSeen; }  ///< seconds
  double lastSeen() const { return m_points.back().time; }
  /// 0 to 1: how still it stood when it was first seen. Somebody who stands there all at once was
  /// not seen coming: hidden before, or lost by the tracker.
  double stoodAtFirst() const;
  /// Its stay from a moment on; none when it was out of view since the last tick before that.
  std::optional<MeanStay> stayFrom(double time) const;

 private:
  cv::Point2d velocityAt(const TrackPoint& point) const;
  static void set(const cv::Point2d& velocity, TrackPoint& point);

  std::deque<TrackPoint> m_points;
  std::size_t m_forgotten = 0;  ///< points that were there before
  bool m_hasLookAhead;
  double m_firstSeen;
  cv::Point2d m_firstPlace;
  double m_earlyTime;        ///< of the last point of the first moments
  cv::Point2d m_earlyPlace;  ///< of the same point
};

/// The distance between two places or velocities.
double distanceBetween(const cv::Point2d& a, const cv::Point2d& b);

}  // namespace grouptracker
