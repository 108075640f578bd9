#pragma once

#include "host/base/Database.h"
#include "host/people/ObservationSource.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace grouptracker {

/// An observation with the line of the file on which it stands.
struct ObservationRow {
  std::int64_t frame = 0;
  std::uint64_t line = 0;
  Observation observation;
};

/// Sorts any number of observations by frame, person and line in bounded memory: those that do not
/// fit into the buffer go to a temporary database. What goes wrong there is an `OutputError`.
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
  /// Whether all rows fitted into the buffer.
  bool isInMemory() const { return !m_table; }
  /// Replaces `row` by the next one in order; false at the end.
  bool next(ObservationRow& row);

 private:
  /// The rows that were too many for memory.
  struct Table {
    std::unique_ptr<Database> database;
    Statement insertion;
    Statement query;  ///< all rows in order
  };

  void moveToTable();

  std::size_t m_capacity;
  std::vector<ObservationRow> m_rows;  ///< all of them, or those that are not in the table yet
  std::size_t m_nextRow = 0;
  std::optional<Table> m_table;  ///< none as long as all rows fit into memory
};

}  // namespace grouptracker
