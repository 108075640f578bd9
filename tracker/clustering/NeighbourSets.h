#pragma once

#include "tracker/clustering/Points.h"
#include "tracker/clustering/SearchRadius.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

/// For every point the points within a radius of it, itself included: one bit per pair of points,
/// which is little beside the points themselves as long as they are a frame's.
class NeighbourSets {
 public:
  /// All coordinates must be finite.
  NeighbourSets(const Points& points, const SearchRadius& radius);

  /// Calls `visit` with each neighbour's index, in ascending order.
  template <typename Visit>
  void forEach(std::size_t point, Visit visit) const;

  /// The neighbour with the smallest index.
  std::size_t first(std::size_t point) const;
  bool same(std::size_t a, std::size_t b) const;

 private:
  using Word = std::uint64_t;
  static constexpr std::size_t wordBits = 64;

  const Word* row(std::size_t point) const { return m_bits.data() + point * m_words; }
  void add(std::size_t point, std::size_t neighbour) {
    m_bits[point * m_words + neighbour / wordBits] |= Word(1) << (neighbour % wordBits);
  }

  std::size_t m_words;  ///< per point
  std::vector<Word> m_bits;
};

template <typename Visit>
void NeighbourSets::forEach(std::size_t point, Visit visit) const {
  const Word* const set = row(point);
  for (std::size_t w = 0; w < m_words; ++w) {
    for (Word left = set[w]; left != 0; left &= left - 1) {
      visit(w * wordBits + static_cast<std::size_t>(std::countr_zero(left)));
    }
  }
}
