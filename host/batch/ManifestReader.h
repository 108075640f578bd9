#pragma once

#include "host/base/InputError.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace grouptracker {

/// What a manifest says about one recording, as it stands there.
struct ManifestEntry {
  /// A key and its value, and the lines in which they stand; a key may come several times.
  struct Setting {
    std::string key;
    std::string value;
    std::uint64_t keyLine = 0;
    std::uint64_t valueLine = 0;
  };

  InputPlace place;
  std::vector<Setting> settings;
};

/// Reads a manifest, recording by recording. A table as CSV says in its first line what the columns
/// are, empty cells say nothing, and what can be given several times is divided by semicolons:
///
///     name,input,rate,set
///     north,north/tracks.csv,25,temporalWinForRemoval=40;coherenceThreshold=4
///
/// A file *.toml has a table for each recording and one for what holds for all that say nothing
/// else; it is in memory as a whole, while of a CSV there is a line at a time:
///
///     [defaults]
///     rate = 25
///     [[recording]]
///     name = "north"
///     input = "north/tracks.csv"
///     set = ["temporalWinForRemoval=40", "coherenceThreshold=4"]
class ManifestReader {
 public:
  /// A file that cannot be opened, or is no TOML, is an `InputError`. What else is wrong goes to
  /// the handler, behind whose return the reader goes on with the next recording.
  static std::unique_ptr<ManifestReader> open(const std::string& path, ProblemHandler onProblem);

  ManifestReader() = default;
  ManifestReader(const ManifestReader&) = delete;
  ManifestReader& operator=(const ManifestReader&) = delete;
  virtual ~ManifestReader() = default;

  /// Goes to the next recording; false at the end.
  virtual bool next(ManifestEntry& entry) = 0;
};

/// The reader of a file *.toml.
std::unique_ptr<ManifestReader> openTomlManifest(const std::string& path, ProblemHandler onProblem);

/// What a cell of a CSV must look like to be read as this text.
std::string csvCell(const std::string& text);

}  // namespace grouptracker
