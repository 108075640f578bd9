#pragma once

#include "host/batch/FileMark.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// How the groups of a recording compare with the true ones, each from 0 to 1.
struct RecordingScores {
  double windowed = 0.0;  ///< group MITRE's F1, mean over windows
  double whole = 0.0;     ///< group MITRE's F1 of the whole recording
  double pairs = 0.0;     ///< F1 of the pairs at all frames
};

/// What became of a recording, and of what: a small JSON file beside its outputs, put in place when
/// these are whole. A file that is not there, or no such file, says that nothing became of it.
struct RecordingResult {
  bool isDone = false;               ///< otherwise it failed
  std::string message;               ///< why it failed
  std::vector<std::string> request;  ///< all that was asked for, and the hash of the program
  FileMarks inputs;                  ///< seen from the manifest's folder
  FileMarks outputs;                 ///< seen from the recording's folder
  std::uint64_t frames = 0;
  std::uint64_t people = 0;
  std::uint64_t groups = 0;
  std::uint64_t events = 0;
  std::optional<RecordingScores> scores;  ///< none without a truth
  double seconds = 0.0;
  double megabytes = 0.0;  ///< of memory, at most

  /// Whether both are of the same request and inputs.
  bool isOfSame(const RecordingResult& other) const;

  /// None when there is no whole one.
  static std::optional<RecordingResult> read(const std::string& path);
  /// Puts the file in place, on the disk before this returns. What cannot be written is an
  /// `OutputError`.
  void write(const std::string& path) const;
};

}  // namespace grouptracker
