#pragma once

#include "host/output/WholeFile.h"

#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <string>

namespace grouptracker {

/// A small file beside the outputs of a run that says whether they are complete, for who finds them
/// later:
///
///     {"complete": true, "frames": 3000}
///
/// It stands there with false before any output is emptied and is replaced, as a whole, when the
/// input has been read to its end and every output is written. Whatever ends a run before leaves
/// the false.
class RunStatus {
 public:
  /// Nothing is written when the path is empty. What cannot be written is an `OutputError`.
  explicit RunStatus(const std::string& path) {
    if (!path.empty()) {
      m_file.emplace(path);
    }
    write(false, 0);
  }

  /// All is written; `frames` were read.
  void complete(std::uint64_t frames) { write(true, frames); }

 private:
  void write(bool isComplete, std::uint64_t frames) {
    if (m_file) {
      m_file->write(fmt::format("{{\"complete\": {}, \"frames\": {}}}\n", isComplete, frames));
    }
  }

  std::optional<WholeFile> m_file;  ///< none when nobody wants it
};

}  // namespace grouptracker
