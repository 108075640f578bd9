#include "host/output/Database.h"

#include "host/base/OutputError.h"
#include "host/base/SystemProblem.h"

#include <cerrno>
#include <cstdio>

namespace grouptracker {

Database::Database(const std::string& path) : m_path(path) {
  if (std::remove(path.c_str()) != 0 && errno != ENOENT) {
    throw OutputError(path, systemProblem("cannot be replaced"));
  }
  sqlite3* handle = nullptr;
  const int result = sqlite3_open(path.c_str(), &handle);
  m_handle.reset(handle);
  if (result != SQLITE_OK) {
    fail();
  }
}

void Database::execute(const char* sql) {
  if (sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
    fail();
  }
}

void Database::fail() const {
  throw OutputError(m_path, std::string("cannot be written: ") + sqlite3_errmsg(handle()));
}

Insertion::Insertion(const Database& database, const char* sql) : m_database(database) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(database.handle(), sql, -1, &statement, nullptr) != SQLITE_OK) {
    database.fail();
  }
  m_statement.reset(statement);
}

void Insertion::bind(int place, std::int64_t value) {
  sqlite3_bind_int64(m_statement.get(), place, value);
}

void Insertion::bind(int place, double value) {
  sqlite3_bind_double(m_statement.get(), place, value);
}

void Insertion::bind(int place, const char* text) {
  sqlite3_bind_text(m_statement.get(), place, text, -1, SQLITE_STATIC);
}

void Insertion::bindNull(int place) {
  sqlite3_bind_null(m_statement.get(), place);
}

void Insertion::step() {
  const int result = sqlite3_step(m_statement.get());
  sqlite3_reset(m_statement.get());
  if (result != SQLITE_DONE) {
    m_database.fail();
  }
}

}  // namespace grouptracker
