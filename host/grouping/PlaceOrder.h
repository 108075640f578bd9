#pragma once

#include "host/grouping/PeopleFrame.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace grouptracker {

/// People in the order of their places along the axis on which they are spread wider, so that those
/// who are near each other are found without looking at everybody.
class PlaceOrder {
 public:
  explicit PlaceOrder(const std::vector<PersonAt>& people);

  /// Calls `use(index)` with everybody else of whom neither coordinate differs from a person's by
  /// `reach()` metres or more, which may shrink from one to the next.
  template <typename Reach, typename Use>
  void forEachNear(std::size_t person, const Reach& reach, const Use& use) const;

 private:
  struct Entry {
    double along = 0.0;   ///< on the axis, metres
    double across = 0.0;  ///< metres
    std::size_t index = 0;
  };

  std::vector<Entry> m_entries;      ///< ascending by `along`
  std::vector<std::size_t> m_ranks;  ///< of each person, among the entries
};

template <typename Reach, typename Use>
void PlaceOrder::forEachNear(std::size_t person, const Reach& reach, const Use& use) const {
  const Entry* const self = m_entries.data() + m_ranks[person];
  const auto look = [&](const Entry& other) {
    if (std::abs(other.across - self->across) < reach()) {
      use(other.index);
    }
  };
  const Entry* const end = m_entries.data() + m_entries.size();
  for (const Entry* other = self + 1; other != end && other->along - self->along < reach();
       ++other) {
    look(*other);
  }
  const Entry* const begin = m_entries.data();
  for (const Entry* other = self; other != begin && self->along - (other - 1)->along < reach();
       --other) {
    look(*(other - 1));
  }
}

}  // namespace grouptracker
