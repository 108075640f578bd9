#pragma once

#include <cstdint>
#include <map>

namespace grouptracker {

/// Counts different persons by their ids. Trackers number people in a row, so the ids are kept as
/// ranges: what a run of months remembers is a few of them.
class PersonCount {
 public:
  void see(std::uint32_t id);
  /// The different ones seen so far.
  std::uint64_t count() const { return m_count; }

 private:
  std::map<std::uint64_t, std::uint64_t>
      m_ranges;  ///< from the first id to the one behind the last
  std::uint64_t m_count = 0;
};

}  // namespace grouptracker
