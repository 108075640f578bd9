#pragma once

#include "host/evaluation/search/TuningSpace.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// One run that a search wants: a candidate on a sequence.
struct TrialTask {
  std::size_t sequence = 0;  ///< from 0, as the search's command line names them
  std::string score;         ///< what is asked for, by its name
  Candidate candidate;

  bool operator==(const TrialTask&) const = default;
};

using TrialTasks = std::vector<TrialTask>;

/// The way of tasks to other machines and of their scores back, by files in a folder that all see.
/// A file has how many tasks make a part, and then a task a line, numbers to the last bit:
///
///     chunk 6
///     0 sliding 4.25 10
///
/// and beside it is a file for each part that was computed, with a score or "died" a line. Late
/// tasks of an earlier search may still write: each round needs a path of its own.
class TrialTaskFiles {
 public:
  TrialTaskFiles(const std::string& path, std::size_t chunk) : m_path(path), m_chunk(chunk) {}
  /// The files of a search elsewhere. What is no such file is an `InputError`, here and below.
  static TrialTaskFiles open(const std::string& path);

  const std::string& path() const { return m_path; }
  void writeTasks(const TrialTasks& tasks) const;
  /// Those of one part.
  TrialTasks readTasks(std::size_t part) const;
  /// Puts the scores of a part in place as a whole.
  void writeResults(std::size_t part, const std::vector<std::optional<double>>& results) const;
  /// Whether the scores of all parts of so many tasks are there.
  bool isComplete(std::size_t tasks) const;
  /// Tells the scores that are there in the order of the tasks, and returns the other tasks: nobody
  /// knows whether these die.
  std::vector<std::size_t> readResults(
      std::size_t tasks, const std::function<void(std::size_t, std::optional<double>)>& take) const;

 private:
  std::string partFile(std::size_t part) const;
  bool hasPart(std::size_t part) const;
  void readPart(std::size_t first, std::size_t end,
                const std::function<void(std::size_t, std::optional<double>)>& take) const;

  std::string m_path;
  std::size_t m_chunk;
};

}  // namespace grouptracker
