#pragma once

#include "host/grouping/PeopleFrame.h"
#include "library/Tracker.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Tracks as a table has them, one row for a person at a moment, in any order. Columns that are not
/// there are empty; frame or time, id, and position or box are.
struct TrackTable {
  std::vector<double> frames;  ///< the table's own numbers
  std::vector<double> times;   ///< seconds
  std::vector<double> ids;
  std::vector<std::array<double, 2>> positions;  ///< metres
  std::vector<std::array<double, 4>> boxes;      ///< left, top, width, height, pixels
};

/// What is found in a table.
struct TableGroups {
  std::vector<TrackerStep> steps;          ///< of all frames from the first to the last
  std::vector<std::uint32_t> groupOfRows;  ///< the group of each row, 0 for whoever is in none
};

/// Finds the groups of a table as the program does for a file with the same rows. `rate` is in
/// frame numbers a second, of the settings only that holds which is about groups and camera;
/// without a camera a table of boxes gets the one that its people show. What is wrong is an
/// `InputError` about `table:ROW`, rows counted from 1.
TableGroups findGroups(TrackTable table, const std::optional<double>& rate,
                       const TrackerSettings& settings);

/// Everybody's places frame by frame, of the same table.
std::vector<PeopleFrame> peopleOf(const TrackTable& table, const std::optional<double>& rate,
                                  const TrackerSettings& settings);

}  // namespace grouptracker
