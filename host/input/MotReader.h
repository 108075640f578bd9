#pragma once

#include "host/base/InputError.h"
#include "host/base/LineReader.h"
#include "host/people/ObservationTable.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Which lines of a MOTChallenge file count.
struct MotChoice {
  double minConfidence = -std::numeric_limits<double>::infinity();
};

/// What one line says.
struct MotRow {
  std::int64_t frame = 0;
  std::optional<Observation> seen;  ///< none on a line that does not count
};

/// Reads single lines, see `readMot()`.
class MotRowParser {
 public:
  explicit MotRowParser(const MotChoice& choice) : m_choice(choice) {}

  /// The reader's current line. What is wrong is a `ValueProblem`.
  MotRow parse(const LineReader& lines);

 private:
  MotChoice m_choice;
  std::vector<double> m_row;  ///< kept from line to line
  std::size_t m_columns = 0;  ///< of the line before
};

/// Reads the text files of the MOTChallenge benchmarks: 6 to 10 numbers a line, between commas,
///
///     frame, id, left, top, width, height, confidence, x, y, z        (10; x, y in metres or -1)
///     frame, id, left, top, width, height, counts, class, visibility  (8 or 9, ground truth)
///     1,3,912.2,484.0,97.5,109.1,0.98                                 (6 or 7)
///
/// with boxes in pixels. A position on the ground counts when x, y and z are not all -1. Of a
/// ground truth only pedestrians (class 1, or -1 for unknown) whose line counts (is not 0) are
/// taken. Lines may come in any order; blank lines are passed over. Other counts of numbers, text,
/// a box of negative size and numbers out of all range are an `InputError`; so is the id -1, with
/// which detectors mark boxes that nobody has tracked yet. When `onProblem` does not throw, the
/// line is passed over. The caller may add frames without observations and then calls `finish()`.
std::unique_ptr<ObservationTable> readMot(std::istream& in, const std::string& name,
                                          const MotChoice& choice,
                                          const ProblemHandler& onProblem = throwProblem);
/// The same for a file.
std::unique_ptr<ObservationTable> readMot(const std::string& path, const MotChoice& choice,
                                          const ProblemHandler& onProblem = throwProblem);
/// Whether a line could be one of such a file.
bool isMotLine(const std::string& line);
/// Whether such a line says where on the ground somebody is.
bool holdsPosition(const std::string& line);

}  // namespace grouptracker
