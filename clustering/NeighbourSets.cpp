#include "NeighbourSets.h"

#include <algorithm>
#include <utility>

#include "PointTable.h"

namespace {

/// The points along one of their features, as (feature, index).
std::vector<std::pair<double, std::size_t>> sortedAlong(const Points& points, std::size_t feature) {
  std::vector<std::pair<double, std::size_t>> order(points.count());
  for (std::size_t i = 0; i < order.size(); ++i) {
    order[i] = {points[i][feature], i};
  }
  std::sort(order.begin(), order.end());
  return order;
}

}  // namespace

// A sweep along the widest feature: once the difference there excludes a point alone, it excludes
// all that follow. Each pair is compared once, as both differences have the same square.
NeighbourSets::NeighbourSets(const Points& points, const SearchRadius& radius)
    : words((points.count() + wordBits - 1) / wordBits), bits(words * points.count()) {
  const auto order = sortedAlong(points, points.widestFeature());
  PointTable table(points.dimension(), points.count());
  for (const auto& [feature, index] : order) {
    table.append(points[index]);
  }

  std::size_t end = 0;  // of the points that the widest feature does not exclude
  for (std::size_t here = 0; here < order.size(); ++here) {
    const auto [feature, index] = order[here];
    add(index, index);
    while (end < order.size() && !radius.excludes(order[end].first - feature)) {
      ++end;
    }
    const double* const point = points[index];
    const auto isWithin = [&](std::size_t other) {
      return radius.contains(points[order[other].second], point);
    };
    constexpr std::size_t tileSize = PointTable::tileSize;
    table.aim(point);
    for (std::size_t tile = (here + 1) / tileSize; tile * tileSize < end; ++tile) {
      std::uint32_t found = table.within(tile, radius, isWithin);
      if (tile * tileSize <= here) {
        found &= ~0U << (here + 1 - tile * tileSize);  // the others have met this point already
      }
      for (; found != 0; found &= found - 1) {
        const auto lane = static_cast<std::size_t>(std::countr_zero(found));
        const std::size_t neighbour = order[tile * tileSize + lane].second;
        add(index, neighbour);
        add(neighbour, index);
      }
    }
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
