#pragma once

#include "host/base/OutputFile.h"

#include <QSaveFile>

#include <optional>
#include <string>
#include <string_view>

namespace grouptracker {

/// A file that is written at the end of a run: there is nothing or an older one until the new one
/// is complete. Its place is opened at once, so that a run of hours does not end in vain. A pipe or
/// device is written directly.
class WholeFile {
 public:
  /// A place that cannot be written is an `OutputError`.
  explicit WholeFile(const std::string& path);

  /// Puts the text in place, once; what cannot be written is an `OutputError`.
  void write(std::string_view text);
  /// Whether the place is a file, which another text can be put in; not what is a stream.
  bool canBeReplaced() const { return !m_stream; }

 private:
  [[noreturn]] void fail() const;

  std::string m_path;
  QSaveFile m_file;                    ///< closed while there is a stream
  std::optional<OutputFile> m_stream;  ///< to a pipe or device
};

}  // namespace grouptracker
