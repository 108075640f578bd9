#pragma once

#include "host/base/OutputFile.h"
#include "host/evaluation/search/TuningSpace.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// A candidate that is tried on all sequences.
struct Trial {
  std::size_t number = 0;  ///< from 1, in the order in which the search came upon them
  Candidate candidate;
  std::vector<std::optional<double>> scores;  ///< for each sequence; none where the trial died
};

/// The trials of a search as comma-separated values, a row written as soon as a trial has finished:
///
///     trial,seq_eth,zara01,coherenceThreshold:,dirSimWeight:
///     1,0.871,died,4,10
///
/// An earlier file of the same search answers for the trials that it holds.
class TrialLog {
 public:
  /// An empty path keeps no file. With `resume` an existing file is read first; a row that fits
  /// neither the sequences nor the values is an `InputError`.
  TrialLog(const std::string& path, const std::vector<std::string>& sequences,
           const TuningSpace& space, bool resume);

  /// Takes the scores of an earlier trial of the same number; false when there is none. A trial of
  /// another candidate means that the file is of another search, an `InputError`.
  bool recall(Trial& trial) const;
  void write(const Trial& trial);

 private:
  void readEarlier(const std::string& header);

  std::string m_path;
  std::size_t m_sequences;
  std::map<std::size_t, std::string> m_earlier;  ///< rows by the trial's number
  std::unique_ptr<OutputFile> m_file;            ///< null without a path
};

}  // namespace grouptracker
