#include "tracker/clustering/NeighbourSets.h"

#include "tracker/clustering/PointTable.h"

#include <algorithm>
#include <utility>

namespace {

/// The points in the order of their widest feature, where near points stand near each other.
class SortedPoints {
 public:
  explicit SortedPoints(const Points& allPoints)
      : m_points(allPoints),
        m_order(m_points.count()),
        m_table(m_points.dimension(), m_points.count()) {
    for (std::size_t i = 0; i < m_order.size(); ++i) {
      m_order[i] = {m_points[i][m_points.widestFeature()], i};
    }
    std::sort(m_order.begin(), m_order.end());
    for (const auto& [feature, index] : m_order) {
      m_table.append(m_points[index]);
    }
  }

  std::size_t indexAt(std::size_t place) const { return m_order[place].second; }

  /// The first place from `from` on whose widest feature alone excludes it, and hence all places
  /// that follow.
  std::size_t firstExcluded(std::size_t from, std::size_t here, const SearchRadius& radius) const {
    while (from < m_order.size() && !radius.excludes(m_order[from].first - m_order[here].first)) {
      ++from;
    }
    return from;
  }

  /// Calls `visit` with the index of each point after `here` and before `end` that lies within the
  /// radius of the one at `here`.
  template <typename Visit>
  void forEachFollower(std::size_t here, std::size_t end, const SearchRadius& radius, Visit visit) {
    constexpr std::size_t tileSize = PointTable::tileSize;
    const double* const point = m_points[indexAt(here)];
    const auto isWithin = [&](std::size_t place) {
      return radius.contains(m_points[indexAt(place)], point);
    };
    m_table.aim(point);
    for (std::size_t tile = (here + 1) / tileSize; tile * tileSize < end; ++tile) {
      std::uint32_t found = m_table.within(tile, radius, isWithin);
      if (tile * tileSize <= here) {
        found &= ~0U << (here + 1 - tile * tileSize);
      }
      for (; found != 0; found &= found - 1) {
        visit(indexAt(tile * tileSize + static_cast<std::size_t>(std::countr_zero(found))));
      }
    }
  }

 private:
  const Points& m_points;
  std::vector<std::pair<double, std::size_t>> m_order;  ///< (widest feature, index)
  PointTable m_table;
};

}  // namespace

// A sweep along the widest feature. Each pair is compared once: both differences have the same
// square.
NeighbourSets::NeighbourSets(const Points& points, const SearchRadius& radius)
    : m_words((points.count() + wordBits - 1) / wordBits), m_bits(m_words * points.count()) {
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
  const Word* const word = std::find_if(set, set + m_words, [](Word w) { return w != 0; });
  return static_cast<std::size_t>(word - set) * wordBits +
         static_cast<std::size_t>(std::countr_zero(*word));
}

bool NeighbourSets::same(std::size_t a, std::size_t b) const {
  return std::equal(row(a), row(a) + m_words, row(b));
}
