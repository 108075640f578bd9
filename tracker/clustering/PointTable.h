#pragma once

#include "tracker/clustering/SearchRadius.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Points side by side, so that one point is compared with sixteen at a time.
///
/// The points stand in tiles of `tileSize`; within a tile the first coordinates of all its points
/// come first, then the second ones and so on, in single precision. That halves the memory and
/// doubles the lanes. What single precision cannot tell is left to the exact coordinates, which
/// stay with their owner.
class PointTable {
 public:
  static constexpr std::size_t tileSize = 16;

  PointTable(std::size_t dimension, std::size_t expectedCount);

  std::size_t tileCount() const { return (m_pointCount + tileSize - 1) / tileSize; }

  void append(const double* point);
  void replace(std::size_t i, const double* point);

  /// Sets the point that the table is compared with from now on.
  void aim(const double* point);

  /// Which points of a tile lie within `radius` of that point: bit k stands for the tile's k-th
  /// point. `isWithin(i)` answers the same exactly for the table's i-th point; it is rarely asked.
  template <typename IsWithin>
  std::uint32_t within(std::size_t tile, const SearchRadius& radius, IsWithin isWithin) const;

 private:
  /// Points of a tile that may lie within the radius, and those of them that do without doubt.
  struct Verdict {
    std::uint32_t possible;
    std::uint32_t certain;
  };
  Verdict compare(std::size_t tile, const SearchRadius& radius) const;

  std::size_t m_rows;
  std::size_t m_pointCount = 0;
  std::vector<float> m_tiles;
  std::vector<float> m_target;
};

template <typename IsWithin>
std::uint32_t PointTable::within(std::size_t tile, const SearchRadius& radius,
                                 IsWithin isWithin) const {
  auto [inside, certain] = compare(tile, radius);
  for (std::uint32_t doubtful = inside & ~certain; doubtful != 0; doubtful &= doubtful - 1) {
    const int lane = std::countr_zero(doubtful);
    if (!isWithin(tile * tileSize + static_cast<std::size_t>(lane))) {
      inside &= ~(1U << lane);
    }
  }
  return inside;
}
