#pragma once

#include "host/base/PersonNames.h"
#include "host/run/RunStep.h"
#include "library/Tracker.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace grouptracker {

/// The numbers that stand for people's names in one tracker. The program's count in the order in
/// which anybody names somebody, and numbers decide ties: with them, groups would depend on what
/// other trackers saw before. Here names count in the order in which this one sees them, as in a
/// program of its own. Whole numbers below `PersonNames::firstAlias` stand for themselves.
class OwnNames {
 public:
  /// See `PersonNames::remember()`; 0 when nothing is forgotten.
  explicit OwnNames(std::size_t remembered = 0);

  PersonNames& table() { return m_names; }
  /// Of a number of the program.
  std::uint32_t ownOf(std::uint32_t person);
  /// The same of a number of a table, which may be none.
  double ownOf(double person);

  /// The other way round.
  std::uint32_t programsOf(std::uint32_t own) const;
  /// Puts the program's numbers in place of one's own.
  void giveBack(TrackerStep& step) const;
  void giveBack(RunStep& step) const;

 private:
  void giveBack(std::vector<std::uint32_t>& persons) const;

  PersonNames m_names;
};

}  // namespace grouptracker
