#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// What the columns of a table of tracks may hold.
enum class TrackQuantity { frame, time, person, x, y };
inline constexpr std::size_t trackQuantities = 5;

/// What the user says about a table of tracks.
struct TableChoice {
  /// The column's name for what the file calls by another name; empty for the usual names.
  std::array<std::string, trackQuantities> names;
  /// For a file without names: what its columns hold, from the first on; none for other columns.
  std::vector<std::optional<TrackQuantity>> order;
  std::optional<double> unit;  ///< metres that one of the file's units is

  /// Understands "frame=t,id=ped" and, for a file without names, "frame,id,x,y"; other names in
  /// such a list are those of columns that are not used. False for any other text.
  bool parseColumns(const std::string& text);
  bool isEmpty() const;
};

/// Where the columns of a table stand, from 0 on.
struct TrackColumns {
  std::array<std::optional<std::size_t>, trackQuantities> places;
  double unit = 1.0;  ///< metres

  std::optional<std::size_t> at(TrackQuantity quantity) const {
    return places[static_cast<std::size_t>(quantity)];
  }
  /// The number of columns that a row must have at least.
  std::size_t fewest() const;
};

/// Finds the columns in a table's header by the names that are usual, "frame", "id", "x" and "y"
/// among them in any order and case, or by those that the user says. Names may carry a unit, as in
/// "x [cm]" or "x/m", which holds unless the user says another. Throws a `ValueProblem` when a
/// frame or time, a person, x or y is missing.
TrackColumns findColumns(const std::vector<std::string>& header, const TableChoice& choice);

}  // namespace grouptracker
