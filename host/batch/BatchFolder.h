#pragma once

#include "host/batch/Recording.h"
#include "host/batch/RecordingResult.h"

#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// The folder with the results of a batch:
///
///     recordings/NAME/    what a recording gave, `result.json` with it
///     summary.csv, index.html
///     .work/              what is being made
///
/// A recording is made in a folder of its own below .work and moved when it is whole, file by file
/// and `result.json` last: who makes the same one beside makes the same bytes, and what is cut off,
/// also by a failing power supply, is found to be open.
class BatchFolder {
 public:
  /// `program` is the hash of what makes the results; files to read are seen from `inputs`.
  BatchFolder(const std::string& path, const std::string& inputs, const std::string& program);

  /// Makes the folder where it is missing, and removes what dead processes left. A folder that
  /// cannot be made is an `OutputError`.
  void prepare() const;

  const std::string& path() const { return m_path; }
  /// From where files to read are seen.
  const std::string& inputs() const { return m_inputs; }
  std::string placeOf(const std::string& name) const;
  /// What became of a recording by now; none when nothing did, or out of other inputs, options or
  /// program, or when an output is not whole.
  std::optional<RecordingResult> resultOf(const Recording& recording,
                                          const std::vector<std::string>& wishes) const;

  /// Where a recording is to be made, a path for one `WorkFolder`.
  std::string newWork(const std::string& name) const;
  /// What the result has to know before the recording is made: what was asked for, and the marks of
  /// all that is read.
  RecordingResult begin(const Recording& recording, const std::vector<std::string>& wishes) const;
  /// Puts in place what was made, with the marks of the outputs. A failure is dropped where another
  /// process, which made the same beside, has succeeded. Removes the work folder.
  void finish(const std::string& name, const std::string& work, RecordingResult result) const;

 private:
  std::vector<std::string> requestOf(const Recording& recording,
                                     const std::vector<std::string>& wishes) const;

  std::string m_path;    ///< absolute
  std::string m_inputs;  ///< absolute
  std::string m_program;
};

}  // namespace grouptracker
