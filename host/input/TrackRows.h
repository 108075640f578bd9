#pragma once

#include "host/input/TrackColumns.h"
#include "host/people/ObservationTable.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace grouptracker {

/// People's places out of a table, and how fast its frames follow each other.
struct TrackRecording {
  std::unique_ptr<ObservationTable> people;
  std::optional<double> rate;  ///< frame numbers a second; none when the file does not say
  std::string note;            ///< what the user should know about how it was read; may be empty
};

/// The rows of any table of tracks, on the way to observations. Where the table has times but no
/// frames, the times make them: the middle one of their differences is one frame.
class TrackRows {
 public:
  using Row = std::array<double, trackQuantities>;  ///< by quantity; what has no column is not read

  TrackRows(const std::string& name, const ProblemHandler& onProblem)
      : m_people(std::make_unique<ObservationTable>(name, onProblem)) {}

  void setColumns(const TrackColumns& columns);
  const TrackColumns& columns() const { return m_columns; }
  /// The frames a second that the file itself names. A number that cannot be is a `ValueProblem`.
  void setRate(double rate);
  /// Takes a row that stands on the given line. Numbers that make no observation are a
  /// `ValueProblem`.
  void add(const Row& row, std::uint64_t line);
  /// Call once after the last row.
  TrackRecording finish();

 private:
  /// A row with frame and time.
  struct Moment {
    double frame = 0.0;
    double time = 0.0;  ///< seconds
  };

  void noteMoment(const Row& row);
  std::optional<double> rateOfMoments() const;

  std::unique_ptr<ObservationTable> m_people;
  TrackColumns m_columns;
  std::optional<double> m_rate;
  std::optional<Moment> m_first;
  std::optional<Moment> m_last;
};

}  // namespace grouptracker
