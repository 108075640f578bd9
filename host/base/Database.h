#pragma once

#include "host/base/FileDescriptor.h"
#include "host/base/OutputPlace.h"

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>

namespace grouptracker {

/// An SQLite database. What goes wrong is an `OutputError` that names the file.
class Database {
 public:
  /// In a file that is written from scratch, or one whose content is kept; anything else than a
  /// regular file that bears the name is left as it is.
  explicit Database(const std::string& path, OldContent old = OldContent::replaced);
  /// For what would take too much memory: a temporary file, in the folder of the environment
  /// variable TMPDIR or in /var/tmp, which vanishes with the program however that ends.
  static std::unique_ptr<Database> temporary();
  /// For what needs to live no longer than the program and never grows large.
  static std::unique_ptr<Database> inMemory();

  /// Another connection to the file of a database that outlives it, for another thread.
  static std::unique_ptr<Database> beside(const Database& other);

  void execute(const char* sql);
  /// Takes back what was written since "BEGIN", unless the failure before has done so.
  void rollBack();
  sqlite3* handle() const { return m_handle.get(); }
  [[noreturn]] void fail() const;

 private:
  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
  };

  Database() = default;
  void open(const std::string& file);

  std::string m_name;  ///< for messages
  /// Holds the lock. Closed last, since that takes away the locks that SQLite has on the file.
  FileDescriptor m_place;
  std::unique_ptr<sqlite3, Close> m_handle;
};

/// A prepared statement. The database outlives it.
class Statement {
 public:
  using Bytes = std::span<const std::byte>;

  Statement(const Database& database, const char* sql);

  /// Carries out an insertion: one row of as many values as the statement has places. Texts and
  /// bytes are used during the call only.
  template <typename... Values>
  void row(const Values&... values) {
    start(values...);
    next();
    sqlite3_reset(m_statement.get());
  }

  /// Begins a query anew; `next()` moves from row to row.
  template <typename... Values>
  void start(const Values&... values) {
    sqlite3_reset(m_statement.get());
    int place = 0;
    (bind(++place, values), ...);
  }

  /// Ends a query before its last row.
  void reset() { sqlite3_reset(m_statement.get()); }
  /// Moves to the first or next row; false behind the last.
  bool next();
  /// The bytes or characters of a column of the row, 0 the first; they hold until the next move.
  Bytes bytes(int column) const;
  /// A whole number out of a column; 0 for none.
  std::int64_t number(int column) const { return sqlite3_column_int64(m_statement.get(), column); }

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  void bind(int place, std::int64_t value);
  void bind(int place, double value);
  void bind(int place, const char* text);
  void bind(int place, const std::string& text);
  void bind(int place, Bytes bytes);
  void bind(int place, const std::variant<std::int64_t, std::string>& value);
  template <typename Value>
  void bind(int place, const std::optional<Value>& value) {
    value ? bind(place, *value) : bindNull(place);
  }
  void bindNull(int place);

  const Database& m_database;
  std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
};

}  // namespace grouptracker
