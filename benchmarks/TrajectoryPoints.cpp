#include "benchmarks/TrajectoryPoints.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace {

constexpr std::size_t steps = 10;
constexpr double sceneWidth = 60.0;    // metres
constexpr double sceneHeight = 40.0;   // metres
constexpr double stride = 0.5;         // metres per step
constexpr double strideSpread = 0.1;   // between walkers
constexpr double sway = 0.03;          // metres that each position is off the straight line
constexpr double companySpread = 0.5;  // metres between companions, standard deviation

struct Place {
  double x;
  double y;
};
using Track = std::array<Place, steps>;

class Walkers {
 public:
  explicit Walkers(unsigned seed) : random(seed) {}

  /// Turns to the next group of people, who share start, direction and pace.
  void nextCompany() {
    start = {uniform(0.0, sceneWidth), uniform(0.0, sceneHeight)};
    const double direction = uniform(0.0, 2.0 * std::numbers::pi);
    const double pace = stride + around(strideSpread);
    step = {pace * std::cos(direction), pace * std::sin(direction)};
  }

  /// A person of the current group.
  Track nextTrack() {
    const Place own = {start.x + around(companySpread), start.y + around(companySpread)};
    Track track;
    for (std::size_t t = 0; t < steps; ++t) {
      const auto time = static_cast<double>(t);
      track[t] = {own.x + time * step.x + around(sway), own.y + time * step.y + around(sway)};
    }
    return track;
  }

  std::size_t between(std::size_t least, std::size_t most) {
    return std::uniform_int_distribution<std::size_t>(least, most)(random);
  }

 private:
  double uniform(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  }
  double around(double deviation) {
    return std::normal_distribution<double>(0.0, deviation)(random);
  }

  std::mt19937 random;
  Place start{};
  Place step{};
};

void writeColumn(const Track& track, math::matrix<double>& data, std::size_t column) {
  for (std::size_t t = 0; t < steps; ++t) {
    data(2 * t, column) = track[t].x / sceneWidth;
    data(2 * t + 1, column) = track[t].y / sceneHeight;
  }
  for (std::size_t t = 0; t + 1 < steps; ++t) {
    data(2 * (steps + t), column) = std::fabs(track[t + 1].x - track[t].x) * 0.5;
    data(2 * (steps + t) + 1, column) = std::fabs(track[t + 1].y - track[t].y) * 0.5;
  }
}

}  // namespace

TrajectoryPoints makeTrajectoryPoints(Company company, std::size_t people) {
  const bool dense = company == Company::dense;
  TrajectoryPoints made{math::matrix<double>(4 * steps - 2, people), dense ? 0.2 : 0.05};
  Walkers walkers(static_cast<unsigned>(people));
  for (std::size_t person = 0; person < people;) {
    walkers.nextCompany();
    const std::size_t size = dense ? walkers.between(3, 7) : 1;
    for (const std::size_t end = std::min(people, person + size); person < end; ++person) {
      writeColumn(walkers.nextTrack(), made.data, person);
    }
  }
  return made;
}
