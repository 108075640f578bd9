#pragma once

#include "host/base/FileDescriptor.h"
#include "host/base/OutputFile.h"

#include <QSaveFile>

#include <optional>
#include <string>
#include <string_view>

namespace grouptracker {

/// A file that is put in place as a whole: there is nothing, an empty file or an older one until
/// the new one is complete. Its place is opened and locked at once, so that a run of hours does not
/// end in vain and no two runs share it. A pipe or device is written directly.
class WholeFile {
 public:
  /// A place that cannot be written is an `OutputError`.
  explicit WholeFile(const std::string& path);
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;
  /// Where nothing was put in place, nothing is left that was not there before.
  ~WholeFile();

  /// Puts the text in place, again and again where `canBeReplaced()`; what cannot be written is an
  /// `OutputError`.
  void write(std::string_view text);
  /// Whether the place is a file, which another text can be put in; not what is a stream.
  bool canBeReplaced() const { return !m_stream; }

 private:
  void removeIfNew() const;
  [[noreturn]] void fail() const;

  std::string m_path;
  FileDescriptor m_place;              ///< what stands there, locked
  bool m_isNew = false;                ///< whether nothing stood there and nothing was written
  QSaveFile m_file;                    ///< closed while there is a stream
  std::optional<OutputFile> m_stream;  ///< to a pipe or device
};

}  // namespace grouptracker
