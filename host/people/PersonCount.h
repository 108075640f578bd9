#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>

namespace grouptracker {

/// Counts different persons by their ids. Trackers number people in a row, so the ids are kept as
/// ranges: what a run of months remembers is a few of them. Where ids are scattered over too many
/// ranges, no further person is counted.
class PersonCount {
 public:
  static constexpr std::size_t mostRanges = 100'000;

  void see(std::uint32_t id) {
    if (!isWhole()) {
      return;
    }
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
  /// The different ones seen so far.
  std::uint64_t count() const { return m_count; }
  /// Whether all were counted; else there were more.
  bool isWhole() const { return m_ranges.size() <= mostRanges; }

 private:
  /// From the first id of a range to the one behind its last.
  std::map<std::uint64_t, std::uint64_t> m_ranges;
  std::uint64_t m_count = 0;
};

}  // namespace grouptracker
