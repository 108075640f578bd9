#pragma once

#include "host/base/FileDescriptor.h"

#include <string>
#include <string_view>
#include <sys/types.h>

namespace grouptracker {

/// A text file that holds whole lines only, whatever happens: each line goes to the operating
/// system in one piece, and a line that a full disk cuts is taken back. An existing file is
/// replaced. What cannot be opened or written is an `OutputError`; a pipe without reader is
/// `ClosedPipe`.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);

  /// Writes text that ends with a line end.
  void writeLines(std::string_view lines);

 private:
  [[noreturn]] void fail(int error);

  std::string m_path;
  FileDescriptor m_file;
  off_t m_wholeLines = 0;  ///< bytes written so far, all of whole lines
};

}  // namespace grouptracker
