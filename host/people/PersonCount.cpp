#include "host/people/PersonCount.h"

#include <iterator>

namespace grouptracker {

void PersonCount::see(std::uint32_t id) {
  const std::uint64_t number = id;
  const auto after = m_ranges.upper_bound(number);
  const auto before = after == m_ranges.begin() ? m_ranges.end() : std::prev(after);
  if (before != m_ranges.end() && number < before->second) {
    return;
  }
  ++m_count;
  const bool continues = before != m_ranges.end() && before->second == number;
  const bool leads = after != m_ranges.end() && after->first == number + 1;
  const std::uint64_t end = leads ? after->second : number + 1;
  if (leads) {
    m_ranges.erase(after);
  }
  continues ? void(before->second = end) : void(m_ranges.emplace(number, end));
}

}  // namespace grouptracker
