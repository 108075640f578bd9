#include "host/grouping/PersonTrack.h"

#include "host/grouping/PeopleFrame.h"

#include <algorithm>
#include <cmath>
#include <iterator>

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

void Surroundings::add(double distance) {
  within3Metres += distance < radius ? 1 : 0;
  if (!(distance < nearest.back())) {
    return;
  }
  std::size_t place = most - 1;
  for (; place > 0 && distance < nearest[place - 1]; --place) {
    nearest[place] = nearest[place - 1];
  }
  nearest[place] = distance;
}

int Surroundings::nearerThan(double distance) const {
  int nearer = 0;
  for (const double other : nearest) {
    nearer += other < distance ? 1 : 0;
  }
  return nearer;
}

PersonTrack::PersonTrack(double time, const cv::Point2d& place, bool hasLookAhead)
    : m_hasLookAhead(hasLookAhead),
      m_firstSeen(time),
      m_firstPlace(place),
      m_earlyTime(time),
      m_earlyPlace(place) {}

void PersonTrack::add(TrackPoint point) {
  const bool isSecond = m_forgotten == 0 && m_points.size() == 1;
  set(velocityAt(point), point);
  if (isSecond && m_hasLookAhead) {
    set(point.velocity, m_points.front());
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

std::optional<MeanStay> PersonTrack::stayFrom(double time) const {
  MeanStay stay{0.0, m_points.back().time, {}};
  double seconds = 0.0;
  for (auto point = m_points.rbegin(); point->time >= time; ++point) {
    const auto before = std::next(point);
    if (before == m_points.rend() ||
        before->time < point->time - point->sinceTick - ticks::tolerance) {
      return std::nullopt;
    }
    stay.first = point->time;
    stay.mean += point->sinceTick * point->place;
    seconds += point->sinceTick;
  }
  stay.mean *= 1.0 / seconds;
  return stay;
}

cv::Point2d PersonTrack::velocityAt(const TrackPoint& point) const {
  const double earliest = point.time - velocitySpan - ticks::tolerance;
  const TrackPoint* from = nullptr;
  for (auto earlier = m_points.rbegin(); earlier != m_points.rend() && earlier->time >= earliest;
       ++earlier) {
    from = &*earlier;
  }
  if (from == nullptr) {
    return {0.0, 0.0};  // nothing recent to compare with
  }
  const double seconds = point.time - from->time;
  return {(point.place.x - from->place.x) / seconds, (point.place.y - from->place.y) / seconds};
}

void PersonTrack::set(const cv::Point2d& velocity, TrackPoint& point) {
  point.velocity = velocity;
  point.speed = std::hypot(velocity.x, velocity.y);
}

}  // namespace grouptracker
