#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace grouptracker {

/// What tells a file or a folder from what it is after any change. The hash is one against
/// accidents, not against somebody who wants two files to look the same. Of a folder it covers
/// names, sizes and times of all files below; of a file its content, so that a copy of it is the
/// same.
struct FileMark {
  std::string path;
  std::int64_t size = -1;     ///< bytes, of all files below for a folder; -1 when nothing is there
  std::int64_t modified = 0;  ///< nanoseconds; the latest in a folder
  std::string hash;

  /// The mark of what stands at a path now.
  static FileMark of(const std::string& path);
  /// Whether what stands at its path, seen from a folder, is what was marked. A file is read only
  /// when its time is another one.
  bool holdsIn(const std::string& folder) const;
};

using FileMarks = std::vector<FileMark>;

/// The hash of a file's content; empty when it is no file or cannot be read.
std::string hashOfFile(const std::string& path);

}  // namespace grouptracker
