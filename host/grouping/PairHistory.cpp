#include "host/grouping/PairHistory.h"

#include "host/grouping/PeopleFrame.h"

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

void PairHistory::catchUp(double time, const PersonTrack& a, const PersonTrack& b) {
  m_time = time;
  const bool isUpToDate = m_nextA + 1 == a.end() && m_nextB + 1 == b.end();
  if (isUpToDate && a.latest().time == b.latest().time) {  // nearly always
    add(a.latest(), b.latest());
    ++m_nextA;
    ++m_nextB;
    return;
  }
  std::size_t i = std::max(m_nextA, a.begin());
  std::size_t j = std::max(m_nextB, b.begin());
  while (i < a.end() && j < b.end()) {
    const TrackPoint& pointOfA = a[i];
    const TrackPoint& pointOfB = b[j];
    if (pointOfA.time == pointOfB.time) {
      add(pointOfA, pointOfB);
    }
    i += pointOfA.time <= pointOfB.time ? 1 : 0;
    j += pointOfB.time <= pointOfA.time ? 1 : 0;
  }
  m_nextA = i;
  m_nextB = j;
}

PairHistory::Sums PairHistory::valuesOf(const TrackPoint& a, const TrackPoint& b) {
  Sums values{};
  const double apart = distanceBetween(a.place, b.place);
  values[seconds] = 1.0;
  values[distance] = apart;
  values[velocityDifference] = distanceBetween(a.velocity, b.velocity);
  values[speedA] = a.speed;
  values[speedB] = b.speed;
  const bool bothStand = values[speedA] < standingSpeed && values[speedB] < standingSpeed;
  values[standing] = bothStand ? 1.0 : 0.0;
  values[nearerOthers] = (a.around.nearerThan(apart) + b.around.nearerThan(apart)) / 2.0;
  values[crowd] = (a.around.within3Metres + b.around.within3Metres) / 2.0;
  const cv::Point2d heading = a.velocity + b.velocity;
  const double pace = length(heading);
  const double walk = std::clamp((pace / 2 - slowWalk) / (surelyWalking - slowWalk), 0.0, 1.0);
  if (walk > 0.0) {
    const cv::Point2d way = b.place - a.place;
    values[walking] = walk;
    values[along] = walk * std::abs(way.x * heading.x + way.y * heading.y) / pace;
    values[across] = walk * std::abs(way.x * heading.y - way.y * heading.x) / pace;
  }
  values[closeSeconds] = apart < close ? 1.0 : 0.0;
  values[nearSeconds] = apart < near ? 1.0 : 0.0;
  values[wayTogether] = apart < near ? std::min(values[speedA], values[speedB]) : 0.0;
  return values;
}

void PairHistory::add(const TrackPoint& a, const TrackPoint& b) {
  const Sums values = valuesOf(a, b);
  if (!m_lastTime) {
    m_firstTime = a.time;
    m_firstDistance = values[distance];
  }
  const double lasts =
      m_lastTime ? std::min(ticks::longestLength, a.time - *m_lastTime) : a.sinceTick;
  m_lastTime = a.time;
  remember(a, b, values[distance]);
  for (std::size_t i = 0; i < values.size(); ++i) {
    m_total[i] += values[i] * lasts;
  }
}

/// Of what was before the window, as for a pair that is watched from now on, only the sums count.
void PairHistory::remember(const TrackPoint& a, const TrackPoint& b, double apart) {
  if (a.time < windowStart(m_time)) {
    return;
  }
  Row row{a.time, b.place - a.place, {}};
  std::copy_n(m_total.begin(), row.before.size(), row.before.begin());
  m_rows.push_back(row);
  while (!m_peaks.empty() && m_peaks.back().distance <= apart) {
    m_peaks.pop_back();
  }
  m_peaks.push_back({a.time, apart});
}

void PairHistory::moveTo(double time, const PersonTrack& a, const PersonTrack& b) {
  catchUp(time, a, b);
  m_rows.forgetBefore(windowStart(time));
  m_peaks.forgetBefore(windowStart(time));
  m_recent = std::max(m_recent, m_rows.firstNumber());
  while (m_rows[m_recent].time < time - recentPast - ticks::tolerance) {
    ++m_recent;
  }
}

double PairHistory::meanDistance() const {
  const WindowSums& before = m_rows.front().before;
  return (m_total[distance] - before[distance]) / (m_total[seconds] - before[seconds]);
}

PairFeatures PairHistory::features() const {
  PairFeatures features;
  describeWindow(features);
  describeRecent(features);
  describeHistory(features);
  return features;
}

LatestMoments PairHistory::latest() const {
  const double start = m_rows.back().time - latestSpan - ticks::tolerance;
  const Row& first = *std::lower_bound(m_rows.begin(), m_rows.end(), start,
                                       [](const Row& row, double time) { return row.time < time; });
  const WindowSums sums = sumsSince(first);
  double cameFrom = 0.0;
  for (auto row = m_rows.begin(); row->time < first.time; ++row) {
    cameFrom = std::max(cameFrom, length(row->apart));
  }
  return {cameFrom, sums[distance] / sums[seconds], sums[velocityDifference] / sums[seconds],
          m_rows.back().apart - first.apart};
}

PairHistory::WindowSums PairHistory::sumsSince(const Row& row) const {
  WindowSums sums{};
  for (std::size_t i = 0; i < sums.size(); ++i) {
    sums[i] = m_total[i] - row.before[i];
  }
  return sums;
}

void PairHistory::describeWindow(PairFeatures& features) const {
  const WindowSums sums = sumsSince(m_rows.front());
  const auto mean = [&sums](Sum value) { return sums[value] / sums[seconds]; };
  features.meanDistance = mean(distance);
  features.largestDistance = m_peaks.front().distance;
  features.shift = distanceBetween(m_rows.front().apart, m_rows.back().apart);
  features.velocityDifference = mean(velocityDifference);
  features.speedDifference = std::abs(mean(speedA) - mean(speedB));
  features.speed = (mean(speedA) + mean(speedB)) / 2;
  features.standing = mean(standing);
  features.nearerOthers = mean(nearerOthers);
  features.crowd = mean(crowd);
  const bool haveDirection = mean(walking) > leastWalking;
  const double anyDirection = meanProjection * features.meanDistance;
  features.along = haveDirection ? sums[along] / sums[walking] : anyDirection;
  features.across = haveDirection ? sums[across] / sums[walking] : anyDirection;
}

void PairHistory::describeRecent(PairFeatures& features) const {
  const Row& first = m_rows[m_recent];
  const WindowSums sums = sumsSince(first);
  features.recentDistance = sums[distance] / sums[seconds];
  features.recentVelocityDifference = sums[velocityDifference] / sums[seconds];
  features.recentShift = distanceBetween(first.apart, m_rows.back().apart);
}

void PairHistory::describeHistory(PairFeatures& features) const {
  features.timeTogether = m_time - m_firstTime;
  features.firstDistance = m_firstDistance;
  features.closeShare = m_total[closeSeconds] / m_total[seconds];
  features.nearShare = m_total[nearSeconds] / m_total[seconds];
  features.wayTogether = m_total[wayTogether];
}

}  // namespace grouptracker
