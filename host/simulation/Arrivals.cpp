#include "host/simulation/Arrivals.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace grouptracker {

namespace {

struct Side {
  cv::Point2d begin;
  cv::Point2d end;
  double share;  ///< of the people who come from there
};

// Most people cross the view from left to right or back; some come towards the camera or leave it.
const std::array<Side, 4> sides{{
    {{-17.0, 7.0}, {-17.0, 21.0}, 0.4},
    {{17.0, 7.0}, {17.0, 21.0}, 0.4},
    {{-7.0, 46.0}, {7.0, 46.0}, 0.12},
    {{-3.0, 3.0}, {3.0, 3.0}, 0.08},
}};

struct SizeShare {
  int size;
  double share;  ///< of the groups
};

// Small groups are far more frequent than large ones.
const std::array<SizeShare, 5> sizeShares{{{2, 0.55}, {3, 0.24}, {4, 0.11}, {5, 0.06}, {6, 0.04}}};

/// One of the items, by their shares, which need not add up to one.
template <typename Items>
const auto& drawByShare(const Items& items, RandomNumbers& random) {
  double total = 0.0;
  for (const auto& item : items) {
    total += item.share;
  }
  double rest = random.uniform(0.0, total);
  for (const auto& item : items) {
    rest -= item.share;
    if (rest < 0.0) {
      return item;
    }
  }
  return items.back();
}

cv::Point2d drawPlace(const Side& side, RandomNumbers& random) {
  return side.begin + (side.end - side.begin) * random.uniform(0.0, 1.0);
}

bool liesOn(const Side& side, const cv::Point2d& place) {
  return place.x >= side.begin.x && place.x <= side.end.x && place.y >= side.begin.y &&
         place.y <= side.end.y;
}

std::vector<int> sizesOf(const SimulationOptions& options, RandomNumbers& random) {
  std::vector<int> sizes = options.groupSizes;
  if (sizes.empty()) {
    return drawSizes(options.people, options.groupShare, random);
  }
  const int grouped = std::accumulate(sizes.begin(), sizes.end(), 0);
  sizes.insert(sizes.end(), static_cast<std::size_t>(options.people - grouped), 1);
  return sizes;
}

/// Where a way from the border leads that crosses the middle of the scene.
cv::Point2d drawGoal(const cv::Point2d& from, RandomNumbers& random) {
  const cv::Rect2d middle(-6.0, 8.0, 12.0, 24.0);
  for (;;) {
    const cv::Point2d goal = placeElsewhere(from, random);
    if (middle.contains((from + goal) * 0.5)) {
      return goal;
    }
  }
}

double drawSpeed(int size, RandomNumbers& random) {
  constexpr double alone = 1.3;       // m/s
  constexpr double perPerson = 0.04;  // m/s by which a group is slower for each member
  constexpr double deviation = 0.12;
  return std::clamp(alone - perPerson * size + random.normal(deviation), 0.8, 1.7);
}

}  // namespace

std::vector<int> drawSizes(int people, double groupShare, RandomNumbers& random) {
  std::vector<int> sizes;
  int grouped = 0;
  const int wanted = static_cast<int>(std::lround(people * groupShare));
  while (wanted - grouped >= smallestGroup) {
    const int size = std::min(drawByShare(sizeShares, random).size, wanted - grouped);
    sizes.push_back(size);
    grouped += size;
  }
  sizes.insert(sizes.end(), static_cast<std::size_t>(people - grouped), 1);
  return sizes;
}

std::vector<Arrival> planArrivals(const SimulationOptions& options, RandomNumbers& random) {
  constexpr double lastSeconds = 14.0;  // nobody new so shortly before the end, none would be seen
  const double end = std::max(0.0, options.duration() - lastSeconds);
  std::vector<Arrival> arrivals;
  for (const int size : sizesOf(options, random)) {
    const double time = random.uniform(-warmUp, end);
    const cv::Point2d from = drawPlace(drawByShare(sides, random), random);
    arrivals.push_back({time, size, from, drawGoal(from, random), drawSpeed(size, random), {}});
  }
  planCrowding(options, random, arrivals);
  std::stable_sort(arrivals.begin(), arrivals.end(),
                   [](const Arrival& a, const Arrival& b) { return a.time < b.time; });
  return arrivals;
}

cv::Point2d placeElsewhere(const cv::Point2d& place, RandomNumbers& random) {
  for (;;) {
    const Side& side = drawByShare(sides, random);
    if (!liesOn(side, place)) {
      return drawPlace(side, random);
    }
  }
}

}  // namespace grouptracker
