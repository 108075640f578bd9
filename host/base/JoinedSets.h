#pragma once

#include <cstddef>
#include <numeric>
#include <vector>

namespace grouptracker {

/// Sets of the items 0 ... count - 1, each alone at first, that are joined one after another.
class JoinedSets {
 public:
  explicit JoinedSets(std::size_t count) : m_parents(count) {
    std::iota(m_parents.begin(), m_parents.end(), std::size_t{0});
  }

  /// The item that stands for the set of `item`.
  std::size_t rootOf(std::size_t item) {
    while (m_parents[item] != item) {
      m_parents[item] = m_parents[m_parents[item]];  // shortens the way for the next time
      item = m_parents[item];
    }
    return item;
  }

  /// Joins the set of `item` to that of `other`, whose root stands for both.
  void join(std::size_t item, std::size_t other) { m_parents[rootOf(item)] = rootOf(other); }

 private:
  std::vector<std::size_t> m_parents;  ///< trees; a root is its own parent
};

}  // namespace grouptracker
