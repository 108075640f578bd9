#pragma once

#include "host/base/FileDescriptor.h"
#include "host/people/ObservationSource.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace grouptracker {

/// An observation with the line of the file on which it stands.
struct ObservationRow {
  std::int64_t frame = 0;
  std::uint64_t line = 0;
  Observation observation;
};

/// Sorts any number of observations by frame, person and line in bounded memory: what does not fit
/// into the buffer is written, sorted, to a temporary file, and the sorted runs are merged while
/// reading. A file that is in order already makes a single run however long it is.
/// A temporary file that cannot be made, written or read is an `OutputError`.
class ObservationSpool {
 public:
  static constexpr std::size_t defaultCapacity = 128 * 1024;  // rows; about 11 MB

  explicit ObservationSpool(std::size_t capacity = defaultCapacity) : m_capacity(capacity) {}

  /// Takes the next row in any order.
  void add(const ObservationRow& row);
  /// To be called once after the last row; reading then starts at the first.
  void finish();
  /// Goes back to the first row.
  void rewind();
  /// Replaces `row` by the next one in order; false at the end.
  bool next(ObservationRow& row);

 private:
  /// A sorted part of the file, and what of it is in memory.
  struct Run {
    std::uint64_t begin = 0;  ///< rows from the start of the file
    std::uint64_t end = 0;
    std::uint64_t next = 0;  ///< the first row that is not in the window yet
    std::vector<ObservationRow> window;
    std::size_t head = 0;  ///< the first row of the window that was not handed out
  };

  void sortBuffer();
  void writeBuffer();
  void fillWindow(Run& run) const;
  bool isLater(std::size_t a, std::size_t b) const;
  [[noreturn]] void fail(const char* what) const;

  std::size_t m_capacity;
  std::vector<ObservationRow> m_rows;  ///< not written yet; all rows when nothing had to be
  std::size_t m_nextRow = 0;
  std::string m_folder;
  FileDescriptor m_file;        ///< closed as long as all rows fit into memory
  std::uint64_t m_written = 0;  ///< rows
  ObservationRow m_lastWritten;
  std::vector<Run> m_runs;
  std::vector<std::size_t> m_heap;  ///< runs with rows left, that with the first row in front
};

}  // namespace grouptracker
