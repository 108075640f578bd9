#pragma once

#include "host/grouping/PairFeatures.h"
#include "host/grouping/PeopleFrame.h"
#include "host/grouping/PersonTrack.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace grouptracker {

/// What is known of the last seconds, oldest first, in one piece of memory. Moments have numbers
/// that stay when old ones are forgotten.
template <typename Moment>
class Window {
 public:
  bool empty() const { return m_first == m_moments.size(); }
  std::size_t firstNumber() const { return m_erased + m_first; }
  const Moment& operator[](std::size_t number) const { return m_moments[number - m_erased]; }
  auto begin() const { return m_moments.begin() + static_cast<std::ptrdiff_t>(m_first); }
  auto end() const { return m_moments.end(); }
  const Moment& front() const { return m_moments[m_first]; }
  const Moment& back() const { return m_moments.back(); }
  void push_back(const Moment& moment) { m_moments.push_back(moment); }
  void pop_back() { m_moments.pop_back(); }
  void forgetBefore(double time) {
    while (m_moments[m_first].time < time) {
      ++m_first;
    }
    if (m_first > mostForgotten) {
      m_moments.erase(m_moments.begin(), begin());
      m_erased += m_first;
      m_first = 0;
    }
  }

 private:
  static constexpr std::size_t mostForgotten = 16;

  std::vector<Moment> m_moments;
  std::size_t m_first = 0;   ///< those before it are forgotten
  std::size_t m_erased = 0;  ///< how many are gone altogether
};

/// What two persons did in the latest two seconds that are known: the end of the look-ahead, and
/// what is missing of it from before the moment.
struct LatestMoments {
  double cameFrom = 0.0;            ///< largest distance in the seconds before, metres
  double distance = 0.0;            ///< mean, metres
  double velocityDifference = 0.0;  ///< mean of |va - vb|, m/s
  cv::Point2d shift;  ///< how far one moved as the other sees it, first to last, metres
};

/// What two persons did at the ticks at which both were in view. Means over a stretch of time come
/// from running sums, so that a tick costs the same however long the window is. Whether ticks are
/// added one by one or many at a time makes no difference.
class PairHistory {
 public:
  static constexpr double windowPast = 6.0;  ///< seconds
  static constexpr double recentPast = 1.0;  ///< seconds
  static constexpr double latestSpan = 2.0;  ///< seconds

  /// The earliest that belongs to the window of a moment, seconds.
  static double windowStart(double time) { return time - windowPast - ticks::tolerance; }

  /// Adds the ticks that both tracks have got since the last time, as those of a moment know them;
  /// moments grow from call to call.
  void catchUp(double time, const PersonTrack& a, const PersonTrack& b);
  /// The same, and moves the window to the moment, at which both are in view. What was added last
  /// is the window's end.
  void moveTo(double time, const PersonTrack& a, const PersonTrack& b);
  /// The mean distance in the window, metres: all that is needed of pairs that are far apart.
  double meanDistance() const;
  /// The features of the moment. The marks of arrival are left to the caller.
  PairFeatures features() const;
  LatestMoments latest() const;
  /// When both were first in view together, seconds.
  double firstTime() const { return m_firstTime; }
  /// The latest tick that was added, seconds; none before the first.
  std::optional<double> lastTime() const { return m_lastTime; }

 private:
  /// What is summed up, each but the first as a value times the seconds that a tick stands for.
  /// The last ones are wanted of all the time only.
  enum Sum : std::size_t {
    seconds,
    distance,
    velocityDifference,
    speedA,
    speedB,
    standing,
    nearerOthers,
    crowd,
    walking,  ///< 0 to 1, how surely they walk
    along,    ///< times `walking`
    across,   ///< times `walking`
    closeSeconds,
    nearSeconds,
    wayTogether,
    sumCount,
    windowSumCount = closeSeconds
  };
  using Sums = std::array<double, sumCount>;
  using WindowSums = std::array<double, windowSumCount>;

  /// Both at one tick.
  struct Row {
    double time = 0.0;    ///< seconds
    cv::Point2d apart;    ///< from one to the other, metres
    WindowSums before{};  ///< of all earlier rows
  };
  struct Peak {
    double time = 0.0;      ///< seconds
    double distance = 0.0;  ///< metres
  };

  static Sums valuesOf(const TrackPoint& a, const TrackPoint& b);
  void add(const TrackPoint& a, const TrackPoint& b);
  void remember(const TrackPoint& a, const TrackPoint& b, double apart);
  WindowSums sumsSince(const Row& row) const;
  void describeWindow(PairFeatures& features) const;
  void describeRecent(PairFeatures& features) const;
  void describeHistory(PairFeatures& features) const;

  double m_time = 0.0;       ///< the moment, seconds
  Window<Row> m_rows;        ///< of the window
  std::size_t m_recent = 0;  ///< number of the first row of the recent window
  Window<Peak> m_peaks;      ///< distances of the window that no later one exceeds, falling
  Sums m_total{};            ///< of all rows, also of those that are gone
  std::size_t m_nextA = 0;   ///< points of the tracks from here on are new
  std::size_t m_nextB = 0;
  std::optional<double> m_lastTime;  ///< of the latest row, seconds; none before the first
  double m_firstTime = 0.0;          ///< seconds
  double m_firstDistance = 0.0;      ///< metres
};

}  // namespace grouptracker
