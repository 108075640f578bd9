#pragma once

#include "host/base/InputError.h"
#include "host/people/ObservationSource.h"
#include "host/people/ObservationSpool.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace grouptracker {

/// Gathers the observations of a file that may list them in any order and yields them step by step.
/// The frame numbers of such files have a regular step, such as 6 or 10: the difference that is
/// most frequent between neighbours; where numbers are missing, steps without observations fill the
/// gap. A person seen twice at one frame and a gap that no recording has are an `InputError`.
/// Memory does not grow with the file, see `ObservationSpool`.
class ObservationTable : public ObservationSource {
 public:
  /// `name` is the file's name in messages; `onProblem` hears of the wrong rows.
  explicit ObservationTable(std::string name, ProblemHandler onProblem = throwProblem,
                            std::size_t capacity = ObservationSpool::defaultCapacity)
      : m_name(std::move(name)), m_onProblem(std::move(onProblem)), m_rows(capacity) {}

  /// Adds an observation that stands on the given line of the file.
  void add(std::int64_t frame, const Observation& observation, std::uint64_t line);
  /// What `add()` gets in place of frame numbers are times, `ticksPerSecond` a second. Frames are
  /// then numbered by the middle one of the differences between neighbours, and steps have their
  /// times.
  void takeTimes() { m_hasTimes = true; }
  /// Notes that the input has this frame, also when nobody is seen at it.
  void cover(std::int64_t frame);
  /// The frames' images are files of the folder, named by the frame's number in six digits.
  void setImages(std::filesystem::path folder, std::string extension);
  /// Call once after the last `add()` and `cover()`.
  void finish();

  bool next(ObservationStep& step) override;
  std::optional<std::uint64_t> totalSteps() const override { return m_totalSteps; }
  /// Hands out all rows in order; to be called after `finish()` and before the first `next()`.
  void visit(const std::function<void(const ObservationRow&)>& look);
  /// Frame numbers a second; none unless the table takes times of several steps.
  std::optional<double> rate() const;
  /// Whether no file is behind it, so that a copy of the program can read on for itself.
  bool isInMemory() const { return m_rows.isInMemory(); }
  /// The distance between the numbers of neighbouring frames.
  std::int64_t frameStep() const { return m_frameStep; }

  static constexpr double ticksPerSecond = 1e5;

 private:
  using Differences = std::map<std::int64_t, std::uint64_t>;  ///< counts by difference

  Differences examineRows();
  void countSteps();
  void restart();
  std::int64_t stepsBetween(std::int64_t earlier, std::int64_t later) const;
  /// The empty steps behind the last row.
  std::uint64_t stepsToTheEnd(std::int64_t last) const;
  /// Whether frame numbers this far apart are a typing error rather than a pause.
  bool isJump(std::int64_t difference) const;
  void startStep(std::int64_t frame, ObservationStep& step);
  std::string momentText(std::int64_t frame) const;

  std::string m_name;
  ProblemHandler m_onProblem;
  ObservationSpool m_rows;
  std::filesystem::path m_imageFolder;  ///< empty when there are no images
  std::string m_imageExtension;
  std::optional<std::int64_t> m_firstFrame;  ///< the lowest of all that the input has
  std::int64_t m_finalFrame = 0;             ///< the highest

  bool m_hasTimes = false;  ///< frame numbers are ticks

  std::int64_t m_frameStep = 1;
  std::uint64_t m_totalSteps = 0;
  std::uint64_t m_steps = 0;              ///< that were handed out
  std::optional<ObservationRow> m_ahead;  ///< the next row, none behind the last
  std::int64_t m_nextFrame = 0;           ///< of the next step
  std::uint64_t m_stepsLeft = 0;          ///< before the next row's, or after the last row
};

}  // namespace grouptracker
