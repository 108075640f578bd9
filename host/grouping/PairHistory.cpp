#include "host/grouping/PairHistory.h"

#include "host/grouping/Ticks.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double close = 1.2;           // metres, in reach of each other
constexpr double near = 2.0;            // metres, walking together
constexpr double standingSpeed = 0.35;  // m/s; below, a person stands and sways
constexpr double slowWalk = 0.2;        // m/s of both together, from here on they may be walking
constexpr double surelyWalking = 0.5;   // m/s, and from here on they are
constexpr double leastWalking = 0.1;    // share of a window that gives walking a direction
// Mean of |cos| over all directions: what part of a distance lies along one that nobody knows.
constexpr double meanProjection = 0.64;

double length(const cv::Point2d& v) {
  return std::hypot(v.x, v.y);
}

}  // namespace

void PairHistory::update(const PersonTrack& a, const PersonTrack& b) {
  std::size_t i = std::max(m_nextA, a.begin());
  std::size_t j = std::max(m_nextB, b.begin());
  while (i < a.end() && j < b.end()) {
    if (a[i].time == b[j].time) {
      add(rowOf(a[i], b[j]), a[i].sinceTick);
      ++i;
      ++j;
    } else if (a[i].time < b[j].time) {
      ++i;
    } else {
      ++j;
    }
  }
  m_nextA = i;
  m_nextB = j;
}

PairHistory::Row PairHistory::rowOf(const TrackPoint& a, const TrackPoint& b) {
  Row row;
  row.time = a.time;
  row.distance = distanceBetween(a.place, b.place);
  row.apart = b.place - a.place;
  row.velocityDifference = distanceBetween(a.velocity, b.velocity);
  row.speedA = length(a.velocity);
  row.speedB = length(b.velocity);
  row.standing = row.speedA < standingSpeed && row.speedB < standingSpeed ? 1.0 : 0.0;
  row.nearerOthers = (a.around.nearerThan(row.distance) + b.around.nearerThan(row.distance)) / 2.0;
  row.crowd = (a.around.within3Metres + b.around.within3Metres) / 2.0;
  const cv::Point2d heading = a.velocity + b.velocity;
  const double pace = length(heading);
  row.walking = std::clamp((pace / 2 - slowWalk) / (surelyWalking - slowWalk), 0.0, 1.0);
  if (row.walking > 0.0) {
    row.along = std::abs(row.apart.x * heading.x + row.apart.y * heading.y) / pace;
    row.across = std::abs(row.apart.x * heading.y - row.apart.y * heading.x) / pace;
  }
  return row;
}

void PairHistory::add(Row row, double sinceTick) {
  if (!m_lastTime) {
    m_firstTime = row.time;
    m_firstDistance = row.distance;
  }
  row.seconds = m_lastTime ? std::min(ticks::longestLength, row.time - *m_lastTime) : sinceTick;
  m_lastTime = row.time;
  m_seconds += row.seconds;
  m_closeSeconds += row.distance < close ? row.seconds : 0.0;
  if (row.distance < near) {
    m_nearSeconds += row.seconds;
    m_way += row.seconds * std::min(row.speedA, row.speedB);
  }
  m_rows.push_back(row);
}

PairFeatures PairHistory::featuresAt(double time) {
  while (m_rows.front().time < time - windowPast - ticks::tolerance) {
    m_rows.pop_front();
  }
  PairFeatures features;
  describeWindow(features);
  describeRecent(time, features);
  describeHistory(time, features);
  return features;
}

void PairHistory::describeWindow(PairFeatures& features) const {
  Row sum;
  for (const Row& row : m_rows) {
    sum.seconds += row.seconds;
    sum.distance += row.distance * row.seconds;
    sum.velocityDifference += row.velocityDifference * row.seconds;
    sum.speedA += row.speedA * row.seconds;
    sum.speedB += row.speedB * row.seconds;
    sum.standing += row.standing * row.seconds;
    sum.nearerOthers += row.nearerOthers * row.seconds;
    sum.crowd += row.crowd * row.seconds;
    sum.walking += row.walking * row.seconds;
    sum.along += row.along * row.walking * row.seconds;
    sum.across += row.across * row.walking * row.seconds;
    features.largestDistance = std::max(features.largestDistance, row.distance);
  }
  features.meanDistance = sum.distance / sum.seconds;
  features.shift = distanceBetween(m_rows.front().apart, m_rows.back().apart);
  features.velocityDifference = sum.velocityDifference / sum.seconds;
  features.speedDifference = std::abs(sum.speedA - sum.speedB) / sum.seconds;
  features.speed = (sum.speedA + sum.speedB) / 2 / sum.seconds;
  features.standing = sum.standing / sum.seconds;
  features.nearerOthers = sum.nearerOthers / sum.seconds;
  features.crowd = sum.crowd / sum.seconds;
  const bool haveDirection = sum.walking / sum.seconds > leastWalking;
  const double anyDirection = meanProjection * features.meanDistance;
  features.along = haveDirection ? sum.along / sum.walking : anyDirection;
  features.across = haveDirection ? sum.across / sum.walking : anyDirection;
}

void PairHistory::describeRecent(double time, PairFeatures& features) const {
  const auto first = std::find_if(m_rows.begin(), m_rows.end(), [time](const Row& row) {
    return row.time >= time - recentPast - ticks::tolerance;
  });
  double seconds = 0.0;
  double distance = 0.0;
  double velocityDifference = 0.0;
  for (auto row = first; row != m_rows.end(); ++row) {
    seconds += row->seconds;
    distance += row->seconds * row->distance;
    velocityDifference += row->seconds * row->velocityDifference;
  }
  features.recentDistance = distance / seconds;
  features.recentVelocityDifference = velocityDifference / seconds;
  features.recentShift = distanceBetween(first->apart, m_rows.back().apart);
}

void PairHistory::describeHistory(double time, PairFeatures& features) const {
  features.timeTogether = time - m_firstTime;
  features.firstDistance = m_firstDistance;
  features.closeShare = m_closeSeconds / m_seconds;
  features.nearShare = m_nearSeconds / m_seconds;
  features.wayTogether = m_way;
}

}  // namespace grouptracker
