#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace grouptracker {

/// An SQLite database file that is written from scratch. What goes wrong is an `OutputError` that
/// names the file.
class Database {
 public:
  /// Replaces an existing file.
  explicit Database(const std::string& path);

  void execute(const char* sql);
  sqlite3* handle() const { return m_handle.get(); }
  [[noreturn]] void fail() const;

 private:
  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
  };

  std::string m_path;
  std::unique_ptr<sqlite3, Close> m_handle;
};

/// A prepared statement that inserts rows. The database outlives it.
class Insertion {
 public:
  Insertion(const Database& database, const char* sql);

  /// Inserts one row of as many values as the statement has places.
  template <typename... Values>
  void row(const Values&... values) {
    int place = 0;
    (bind(++place, values), ...);
    step();
  }

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  void bind(int place, std::int64_t value);
  void bind(int place, double value);
  void bind(int place, const char* text);
  template <typename Value>
  void bind(int place, const std::optional<Value>& value) {
    value ? bind(place, *value) : bindNull(place);
  }
  void bindNull(int place);
  void step();

  const Database& m_database;
  std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
};

}  // namespace grouptracker
