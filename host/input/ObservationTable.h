#pragma once

#include "ObservationSource.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// Gathers the observations of a file that may list them in any order and yields them step by step.
/// The frame numbers of such files have a regular step, such as 6 or 10: the difference that is
/// most frequent between neighbours; where numbers are missing, steps without observations fill the
/// gap. A person seen twice at one frame is an `InputError`.
class ObservationTable : public ObservationSource {
 public:
  /// `name` is the file's name in messages.
  explicit ObservationTable(std::string name) : m_name(std::move(name)) {}

  /// Adds an observation that stands on the given line of the file.
  void add(std::int64_t frame, const Observation& observation, std::uint64_t line);
  /// Call once after the last `add()`.
  void finish();

  bool next(ObservationStep& step) override;
  std::optional<std::uint64_t> totalSteps() const override { return m_totalSteps; }
  /// The positions of all observations that have one.
  std::vector<cv::Point2d> positions() const;

 private:
  struct Row {
    std::int64_t frame = 0;
    std::uint64_t line = 0;
    Observation observation;
  };

  void refuseRepeatedPersons() const;
  std::int64_t mostFrequentDifference() const;
  std::int64_t stepsBetween(std::int64_t earlier, std::int64_t later) const;

  std::string m_name;
  std::vector<Row> m_rows;  ///< sorted by frame and person once finished
  std::size_t m_nextRow = 0;
  std::int64_t m_frameStep = 1;
  std::int64_t m_missingSteps = 0;  ///< still to come before the next row
  std::int64_t m_lastFrame = 0;     ///< number of the step handed out last
  std::uint64_t m_totalSteps = 0;
};
