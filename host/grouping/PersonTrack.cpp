#include "host/grouping/PersonTrack.h"

#include "host/grouping/PeopleFrame.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double velocitySpan = 1.2;     // seconds; a step of walking, so that swaying evens out
constexpr double firstMoments = 1.7;     // seconds after which somebody is no longer arriving
constexpr double knownArrival = 0.7;     // seconds that must have been seen to judge an arrival
constexpr double standingArrival = 0.2;  // m/s, surely stood
constexpr double walkingArrival = 0.5;   // m/s, surely walked

}  // namespace

double distanceBetween(const cv::Point2d& a, const cv::Point2d& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

int Surroundings::nearerThan(double distance) const {
  const auto end = std::lower_bound(nearest.begin(), nearest.end(), distance);
  return static_cast<int>(end - nearest.begin());
}

PersonTrack::PersonTrack(double time, const cv::Point2d& place, bool hasLookAhead)
    : m_hasLookAhead(hasLookAhead),
      m_firstSeen(time),
      m_firstPlace(place),
      m_earlyTime(time),
      m_earlyPlace(place) {}

void PersonTrack::add(TrackPoint point) {
  const bool isSecond = m_forgotten == 0 && m_points.size() == 1;
  point.velocity = velocityAt(point);
  if (isSecond && m_hasLookAhead) {
    m_points.front().velocity = point.velocity;
  }
  if (point.time <= m_firstSeen + firstMoments) {
    m_earlyTime = point.time;
    m_earlyPlace = point.place;
  }
  m_points.push_back(point);
}

void PersonTrack::forgetBefore(double time) {
  while (m_points.size() > 1 && m_points.front().time < time) {
    m_points.pop_front();
    ++m_forgotten;
  }
}

double PersonTrack::stoodAtFirst() const {
  const double seconds = m_earlyTime - m_firstSeen;
  if (seconds <= knownArrival) {
    return 0.0;
  }
  const double speed = distanceBetween(m_earlyPlace, m_firstPlace) / seconds;
  return std::clamp((walkingArrival - speed) / (walkingArrival - standingArrival), 0.0, 1.0);
}

cv::Point2d PersonTrack::velocityAt(const TrackPoint& point) const {
  const auto from = std::lower_bound(
      m_points.begin(), m_points.end(), point.time - velocitySpan - ticks::tolerance,
      [](const TrackPoint& earlier, double time) { return earlier.time < time; });
  if (from == m_points.end()) {
    return {0.0, 0.0};  // nothing recent to compare with
  }
  const double seconds = point.time - from->time;
  return {(point.place.x - from->place.x) / seconds, (point.place.y - from->place.y) / seconds};
}

}  // namespace grouptracker
