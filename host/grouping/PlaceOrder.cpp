#include "host/grouping/PlaceOrder.h"

#include <algorithm>

namespace grouptracker {

namespace {

/// From the lowest to the highest coordinate of some people, who are there, metres.
template <typename Coordinate>
double spreadOf(const std::vector<PersonAt>& people, const Coordinate& coordinate) {
  const auto [low, high] = std::minmax_element(people.begin(), people.end(),
                                               [&coordinate](const PersonAt& a, const PersonAt& b) {
                                                 return coordinate(a.place) < coordinate(b.place);
                                               });
  return coordinate(high->place) - coordinate(low->place);
}

}  // namespace

PlaceOrder::PlaceOrder(const std::vector<PersonAt>& people)
    : m_entries(people.size()), m_ranks(people.size()) {
  if (people.empty()) {
    return;
  }
  const bool isWide = spreadOf(people, [](const cv::Point2d& place) { return place.x; }) >=
                      spreadOf(people, [](const cv::Point2d& place) { return place.y; });
  for (std::size_t i = 0; i < people.size(); ++i) {
    const cv::Point2d& at = people[i].place;
    m_entries[i] = isWide ? Entry{at.x, at.y, i} : Entry{at.y, at.x, i};
  }
  std::sort(m_entries.begin(), m_entries.end(),
            [](const Entry& a, const Entry& b) { return a.along < b.along; });
  for (std::size_t rank = 0; rank < m_entries.size(); ++rank) {
    m_ranks[m_entries[rank].index] = rank;
  }
}

}  // namespace grouptracker
