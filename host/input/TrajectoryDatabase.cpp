#include "host/input/TrajectoryDatabase.h"

#include "host/base/InputError.h"
#include "host/base/JsonLine.h"
#include "host/base/TextNumbers.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

constexpr std::string_view mark("SQLite format 3\0", 16);  // with which such files begin

/// A database that is only read. What goes wrong is an `InputError` that names the file.
class InputDatabase {
 public:
  explicit InputDatabase(const std::string& path) : m_path(path) {
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr);
    m_handle.reset(handle);
    if (result != SQLITE_OK) {
      fail();
    }
  }

  class Query {
   public:
    Query(const InputDatabase& database, const std::string& sql) : m_database(database) {
      sqlite3_stmt* statement = nullptr;
      const int result =
          sqlite3_prepare_v2(database.m_handle.get(), sql.c_str(), -1, &statement, nullptr);
      m_statement.reset(statement);
      if (result != SQLITE_OK) {
        database.fail();
      }
    }

    /// Moves to the first or next row; false behind the last.
    bool next() {
      const int result = sqlite3_step(m_statement.get());
      if (result != SQLITE_DONE && result != SQLITE_ROW) {
        m_database.fail();
      }
      return result == SQLITE_ROW;
    }

    std::string text(int column) const {
      const auto* const begin = sqlite3_column_text(m_statement.get(), column);
      const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_statement.get(), column));
      return begin == nullptr ? std::string()
                              : std::string(reinterpret_cast<const char*>(begin), size);
    }

    /// Throws a `ValueProblem` for what is no finite number.
    double number(int column) const {
      const int type = sqlite3_column_type(m_statement.get(), column);
      const double number = sqlite3_column_double(m_statement.get(), column);
      const bool isNumber = type == SQLITE_INTEGER || type == SQLITE_FLOAT;
      return isNumber && std::isfinite(number) ? number : parseNumber(text(column));
    }

    std::vector<std::string> columns() const {
      std::vector<std::string> names;
      const int count = sqlite3_column_count(m_statement.get());
      names.reserve(static_cast<std::size_t>(count));
      for (int i = 0; i < count; ++i) {
        names.emplace_back(sqlite3_column_name(m_statement.get(), i));
      }
      return names;
    }

   private:
    struct Finalize {
      void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    const InputDatabase& m_database;
    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
  };

  Query query(const std::string& sql) const { return {*this, sql}; }

 private:
  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
  };

  [[noreturn]] void fail() const {
    throw InputError(m_path, std::string("cannot be read: ") + sqlite3_errmsg(m_handle.get()));
  }

  std::string m_path;
  std::unique_ptr<sqlite3, Close> m_handle;
};

/// The tables, that of the simulations first.
std::vector<std::string> tablesOf(const InputDatabase& database) {
  auto query = database.query(
      "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') "
      "ORDER BY name <> 'trajectory_data', rowid");
  std::vector<std::string> tables;
  while (query.next()) {
    tables.push_back(query.text(0));
  }
  return tables;
}

/// A table and where its columns are.
struct Found {
  std::string table;
  std::vector<std::string> header;
  TrackColumns columns;
};

Found findTable(const InputDatabase& database, const std::string& path, const TableChoice& choice) {
  std::string problem;
  for (const std::string& table : tablesOf(database)) {
    auto header = database.query("SELECT * FROM " + doublyQuoted(table) + " LIMIT 0").columns();
    try {
      const TrackColumns columns = findColumns(header, choice);
      return {table, std::move(header), columns};
    } catch (const ValueProblem& missing) {
      problem = problem.empty() ? fmt::format("table {}: {}", doublyQuoted(table), missing.what())
                                : problem;
    }
  }
  throw InputError(path, problem.empty() ? "holds no table" : problem);
}

void takeRate(const InputDatabase& database, const std::string& path, TrackRows& rows) {
  auto tables = database.query(
      "SELECT 1 FROM sqlite_master WHERE name = 'metadata' AND lower(sql) LIKE '%key%' "
      "AND lower(sql) LIKE '%value%'");
  if (!tables.next()) {
    return;
  }
  auto query = database.query(
      "SELECT value FROM metadata WHERE lower(key) IN ('fps', 'framerate', 'frame_rate')");
  if (!query.next()) {
    return;
  }
  try {
    rows.setRate(query.number(0));
  } catch (const ValueProblem& problem) {
    throw InputError(path, std::string("metadata: ") + problem.what());
  }
}

void addRows(const InputDatabase& database, const Found& found, const std::string& path,
             const ProblemHandler& onProblem, TrackRows& rows) {
  std::string sql;
  for (const auto& place : found.columns.places) {
    sql += (sql.empty() ? "SELECT " : ", ") + (place ? doublyQuoted(found.header[*place]) : "0");
  }
  auto query = database.query(sql + " FROM " + doublyQuoted(found.table));
  for (std::uint64_t number = 1; query.next(); ++number) {
    try {
      TrackRows::Row row{};
      for (std::size_t i = 0; i < trackQuantities; ++i) {
        row[i] = query.number(static_cast<int>(i));
      }
      rows.add(row, number);
    } catch (const ValueProblem& problem) {
      onProblem({path, number, problem.what()});
    }
  }
}

}  // namespace

TrackRecording readTrajectoryDatabase(const std::string& path, const TableChoice& choice,
                                      const ProblemHandler& onProblem) {
  const InputDatabase database(path);
  TrackRows rows(path, onProblem);
  const Found found = findTable(database, path, choice);
  rows.setColumns(found.columns);
  takeRate(database, path, rows);
  addRows(database, found, path, onProblem, rows);
  return rows.finish();
}

bool isTrajectoryDatabase(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::array<char, mark.size()> begin{};
  file.read(begin.data(), begin.size());
  return file && std::string_view(begin.data(), begin.size()) == mark;
}

OpenedInput openTrajectoryDatabase(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  input.files = {path};
  openRecording(readTrajectoryDatabase(path, options.table, options.onProblem), options, input);
  return input;
}

}  // namespace grouptracker
