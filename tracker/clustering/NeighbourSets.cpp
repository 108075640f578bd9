#include "tracker/clustering/NeighbourSets.h"

#include "tracker/clustering/PointTable.h"

#include <algorithm>
#include <utility>

namespace {

/// The points in the order of their widest feature, where near points stand near each other.
class SortedPoints {
 public:
  explicit SortedPoints(const Points& allPoints)
      : points(allPoints), order(points.count()), table(points.dimension(), points.count()) {
    for (std::size_t i = 0; i < order.size(); ++i) {
      order[i] = {points[i][points.widestFeature()], i};
    }
    std::sort(order.begin(), order.end());
    for (const auto& [feature, index] : order) {
      table.append(points[index]);
    }
  }

  std::size_t indexAt(std::size_t place) const { return order[place].second; }

  /// The first place from `from` on whose widest feature alone excludes it, and hence all places
  /// that follow.
  std::size_t firstExcluded(std::size_t from, std::size_t here, const SearchRadius& radius) const {
    while (from < order.size() && !radius.excludes(order[from].first - order[here].first)) {
      ++from;
    }
    return from;
  }

  /// Calls `visit` with the index of each point after `here` and before `end` that lies within the
  /// radius of the one at `here`.
  template <typename Visit>
  void forEachFollower(std::size_t here, std::size_t end, const SearchRadius& radius, Visit visit) {
    constexpr std::size_t tileSize = PointTable::tileSize;
    const double* const point = points[indexAt(here)];
    const auto isWithin = [&](std::size_t place) {
      return radius.contains(points[indexAt(place)], point);
    };
    table.aim(point);
    for (std::size_t tile = (here + 1) / tileSize; tile * tileSize < end; ++tile) {
      std::uint32_t found = table.within(tile, radius, isWithin);
      if (tile * tileSize <= here) {
        found &= ~0U << (here + 1 - tile * tileSize);
      }
      for (; found != 0; found &= found - 1) {
        visit(indexAt(tile * tileSize + static_cast<std::size_t>(std::countr_zero(found))));
      }
    }
  }

 private:
  const Points& points;
  std::vector<std::pair<double, std::size_t>> order;  ///< (widest feature, index)
  PointTable table;
};

}  // namespace

// A sweep along the widest feature. Each pair is compared once: both differences have the same
// square.
NeighbourSets::NeighbourSets(const Points& points, const SearchRadius& radius)
    : words((points.count() + wordBits - 1) / wordBits), bits(words * points.count()) {
  SortedPoints sorted(points);
  std::size_t end = 0;
  for (std::size_t here = 0; here < points.count(); ++here) {
    const std::size_t point = sorted.indexAt(here);
    add(point, point);
    end = sorted.firstExcluded(end, here, radius);
    sorted.forEachFollower(here, end, radius, [&](std::size_t neighbour) {
      add(point, neighbour);
      add(neighbour, point);
    });
  }
}

std::size_t NeighbourSets::first(std::size_t point) const {
  const Word* const set = row(point);
  const Word* const word = std::find_if(set, set + words, [](Word w) { return w != 0; });
  return static_cast<std::size_t>(word - set) * wordBits +
         static_cast<std::size_t>(std::countr_zero(*word));
}

bool NeighbourSets::same(std::size_t a, std::size_t b) const {
  return std::equal(row(a), row(a) + words, row(b));
}
