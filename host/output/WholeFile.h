#pragma once

#include <string>
#include <string_view>

namespace grouptracker {

/// A file that is written at the end of a run: there is nothing or an older one until the new one
/// is complete. Opening its place is tried at once, so that a run of hours does not end in vain.
class WholeFile {
 public:
  /// A place that cannot be written is an `OutputError`.
  explicit WholeFile(const std::string& path);
  ~WholeFile();
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  /// Puts the text in place; what cannot be written is an `OutputError`.
  void write(std::string_view text);

 private:
  std::string m_path;
  std::string m_partPath;  ///< beside the file; a pipe or device is written directly
};

}  // namespace grouptracker
