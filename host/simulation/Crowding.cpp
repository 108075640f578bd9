#include "host/simulation/Arrivals.h"
#include "host/simulation/Posts.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace grouptracker {

namespace {

// The streams pass in front of everybody who stands, m along y.
constexpr double streamBegin = 8.0;
constexpr double streamWidth = 3.5;
constexpr double streamEnd = 17.0;    // with room for those who are pushed out of it
constexpr double border = 17.0;       // m along x, where streams begin and end
constexpr double streamSpeed = 1.15;  // m/s
constexpr double speedDeviation = 0.12;

constexpr double standBegin = 8.5;  // m along y
constexpr double standDepth = 15.0;
constexpr double thereShare = 0.5;  // of those who stand: they have come before
constexpr double roomAround = 2.6;  // m between the places of circles, and of those who wait

/// Places where people stand, in the middle of the view and apart from each other where there is
/// room.
class Places {
 public:
  Places(double begin, RandomNumbers& random) : m_begin(begin), m_random(random) {}

  cv::Point2d draw() {
    constexpr int attempts = 60;
    cv::Point2d best;
    double bestRoom = -1.0;
    for (int i = 0; i < attempts && bestRoom < roomAround; ++i) {
      const double y = m_begin + m_random.uniform(0.0, standDepth);
      const double halfWidth = 0.42 * y + 0.5;  // well within the image at this distance
      const cv::Point2d place(m_random.uniform(-halfWidth, halfWidth), y);
      if (const double room = roomAt(place); room > bestRoom) {
        bestRoom = room;
        best = place;
      }
    }
    m_taken.push_back(best);
    return best;
  }

  /// Beside somebody who waits already, as strangers stand at a wall.
  cv::Point2d drawBeside(const cv::Point2d& other) {
    const double side = m_random.chance(0.5) ? 1.0 : -1.0;
    const cv::Point2d place =
        other + cv::Point2d(side * m_random.uniform(0.7, 1.4), m_random.normal(0.1));
    m_taken.push_back(place);
    return place;
  }

 private:
  double roomAt(const cv::Point2d& place) const {
    double room = std::numeric_limits<double>::max();
    for (const cv::Point2d& taken : m_taken) {
      room = std::min(room, cv::norm(taken - place));
    }
    return room;
  }

  double m_begin;
  RandomNumbers& m_random;
  std::vector<cv::Point2d> m_taken;
};

double drawSpeed(RandomNumbers& random) {
  return std::clamp(streamSpeed + random.normal(speedDeviation), 0.8, 1.5);
}

/// Somebody from one side with a way to another one.
Arrival drawVisit(int size, double time, RandomNumbers& random) {
  const cv::Point2d from = placeElsewhere({}, random);
  return {time, size, from, placeElsewhere(from, random), drawSpeed(random), {}};
}

void planStreams(const SimulationOptions& options, RandomNumbers& random,
                 std::vector<Arrival>& arrivals) {
  constexpr double lastSeconds = 10.0;  // nobody new so shortly before the end
  const double end = std::max(0.0, options.duration() - lastSeconds);
  for (const int size : drawSizes(options.streams, options.groupShare, random)) {
    const bool isRightward = random.chance(0.5);
    const double begin = streamBegin + (isRightward ? 0.0 : streamWidth);
    const double y = begin + random.uniform(0.0, streamWidth);
    const double x = isRightward ? -border : border;
    arrivals.push_back(
        {random.uniform(-warmUp, end), size, {x, y}, {-x, y}, drawSpeed(random), {}});
  }
}

/// Some stay until the end, most go after a while.
double drawDeparture(double begin, double duration, RandomNumbers& random) {
  constexpr double stayerShare = 0.4;
  constexpr double shortest = 25.0;  // s
  const double departure = begin + random.uniform(shortest, shortest + duration);
  return random.chance(stayerShare) ? std::numeric_limits<double>::max() : departure;
}

Arrival drawStay(int size, const Stay& stay, double duration, RandomNumbers& random) {
  const bool isThere = random.chance(thereShare);
  const double time = isThere ? -warmUp : random.uniform(-warmUp, 0.6 * duration);
  Arrival arrival = drawVisit(size, time, random);
  arrival.stay = stay;
  arrival.stay->isThere = isThere;
  arrival.stay->until = drawDeparture(std::max(time, 0.0), duration, random);
  return arrival;
}

void planWaiting(const SimulationOptions& options, RandomNumbers& random, Places& places,
                 std::vector<Arrival>& arrivals) {
  constexpr double besideShare = 0.6;
  cv::Point2d place;
  for (int i = 0; i < options.waiting; ++i) {
    const bool isBeside = i > 0 && random.chance(besideShare);
    place = isBeside ? places.drawBeside(place) : places.draw();
    arrivals.push_back(
        drawStay(1, {Stay::Kind::wait, place, 0.0, false}, options.duration(), random));
  }
}

void planQueue(const SimulationOptions& options, RandomNumbers& random,
               std::vector<Arrival>& arrivals) {
  constexpr int firstLength = 5;  // who queue already when the scene begins
  for (int i = 0; i < options.queue; ++i) {
    const bool isThere = i < firstLength;
    const double time = isThere ? -warmUp : random.uniform(-warmUp, options.duration());
    Arrival arrival = drawVisit(1, time, random);
    arrival.stay = Stay{Stay::Kind::queue, Queue::place(isThere ? i : firstLength), 0.0, isThere};
    arrivals.push_back(arrival);
  }
}

}  // namespace

void planCrowding(const SimulationOptions& options, RandomNumbers& random,
                  std::vector<Arrival>& arrivals) {
  planStreams(options, random, arrivals);
  Places places(options.streams > 0 ? streamEnd : standBegin, random);
  for (const int size : options.circles) {
    arrivals.push_back(
        drawStay(size, {Stay::Kind::talk, places.draw(), 0.0, false}, options.duration(), random));
  }
  planWaiting(options, random, places, arrivals);
  planQueue(options, random, arrivals);
}

}  // namespace grouptracker
