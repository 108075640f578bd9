#include "tracker/clustering/PointTable.h"

#include <algorithm>
#include <limits>

namespace {

// Four lanes are what every x86-64 and ARM64 has. Compiled for eight, the whole clustering gains a
// quarter: not enough for a second version that is chosen at run time.
using Floats = float __attribute__((vector_size(16)));
using UnalignedFloats = float __attribute__((vector_size(16), aligned(4)));
using Flags = std::int32_t __attribute__((vector_size(16)));
using Halves = std::int64_t __attribute__((vector_size(16)));

constexpr std::size_t lanes = 4;
constexpr std::size_t vectors = PointTable::tileSize / lanes;
/// Rows summed between two looks at whether the tile can be left; a look costs about two rows.
constexpr std::size_t rowsPerLook = 8;
constexpr std::uint32_t wholeTile = (1U << PointTable::tileSize) - 1U;

bool anySet(const Flags& flags) {
  const auto halves = std::bit_cast<Halves>(flags);
  return (halves[0] | halves[1]) != 0;
}

/// One bit per lane, the first lane lowest.
std::uint32_t bitsOf(const Flags (&flags)[vectors]) {
  const Flags laneBits = {1, 2, 4, 8};
  Flags gathered = {};
  for (std::size_t v = 0; v < vectors; ++v) {
    gathered |= flags[v] & (laneBits << static_cast<int>(v * lanes));
  }
  return static_cast<std::uint32_t>(gathered[0] | gathered[1] | gathered[2] | gathered[3]);
}

}  // namespace

PointTable::PointTable(std::size_t dimension, std::size_t expectedCount)
    : m_rows(dimension), m_target(dimension) {
  m_tiles.reserve((expectedCount + tileSize) * m_rows);
}

void PointTable::append(const double* point) {
  if (m_pointCount % tileSize == 0) {
    // Lanes without a point are infinitely far away, so that they never keep a tile alive.
    m_tiles.resize(m_tiles.size() + tileSize * m_rows, std::numeric_limits<float>::infinity());
  }
  replace(m_pointCount++, point);
}

void PointTable::replace(std::size_t i, const double* point) {
  const std::size_t lane = i / tileSize * tileSize * m_rows + i % tileSize;
  for (std::size_t r = 0; r < m_rows; ++r) {
    m_tiles[lane + r * tileSize] = static_cast<float>(point[r]);
  }
}

void PointTable::aim(const double* point) {
  std::transform(point, point + m_rows, m_target.begin(),
                 [](double x) { return static_cast<float>(x); });
}

// Every lane sums its own squares row by row. The tile is left as soon as all of them are surely
// outside, which for most tiles is at the first look.
PointTable::Verdict PointTable::compare(std::size_t tile, const SearchRadius& radius) const {
  const std::size_t first = tile * tileSize;
  const float* const coordinates = m_tiles.data() + first * m_rows;
  const float outside = radius.surelyOutside();
  Floats sums[vectors] = {};
  for (std::size_t r = 0; r < m_rows;) {
    for (const std::size_t look = std::min(m_rows, r + rowsPerLook); r < look; ++r) {
      const auto* const row = reinterpret_cast<const UnalignedFloats*>(coordinates + r * tileSize);
      for (std::size_t v = 0; v < vectors; ++v) {
        const Floats difference = row[v] - m_target[r];
        sums[v] += difference * difference;
      }
    }
    Flags allOutside = sums[0] > outside;
    for (std::size_t v = 1; v < vectors; ++v) {
      allOutside &= sums[v] > outside;
    }
    if (!anySet(~allOutside)) {
      return {0, 0};
    }
  }
  Flags possible[vectors];
  Flags certain[vectors];
  for (std::size_t v = 0; v < vectors; ++v) {
    possible[v] = ~(sums[v] > outside);
    certain[v] = sums[v] < radius.surelyInside();
  }
  const std::uint32_t used =
      first + tileSize <= m_pointCount ? wholeTile : (1U << (m_pointCount - first)) - 1U;
  return {bitsOf(possible) & used, bitsOf(certain)};
}
