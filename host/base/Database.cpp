#include "host/base/Database.h"

namespace grouptracker {

Database::Database(const std::string& path, OldContent old)
    : m_name(path), m_place(openRegularOutput(path, old)) {
  // Names with a meaning of their own, such as ":memory:" or "file:...", are files here.
  open(path.starts_with('/') ? path : "./" + path);
}

std::unique_ptr<Database> Database::temporary() {
  std::unique_ptr<Database> database(new Database());
  database->m_name = "temporary database";
  database->open("");  // SQLite's name for one that goes when it is closed
  database->execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN");
  return database;
}

std::unique_ptr<Database> Database::inMemory() {
  std::unique_ptr<Database> database(new Database());
  database->m_name = "database in memory";
  database->open(":memory:");
  return database;
}

std::unique_ptr<Database> Database::beside(const Database& other) {
  std::unique_ptr<Database> database(new Database());
  database->m_name = other.m_name;
  database->open(sqlite3_db_filename(other.handle(), "main"));
  return database;
}

void Database::open(const std::string& file) {
  sqlite3* handle = nullptr;
  const int result = sqlite3_open(file.c_str(), &handle);
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

void Database::rollBack() {
  sqlite3_exec(handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Database::fail() const {
  throw OutputError(m_name, std::string("cannot be written: ") + sqlite3_errmsg(handle()));
}

Statement::Statement(const Database& database, const char* sql) : m_database(database) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(database.handle(), sql, -1, &statement, nullptr) != SQLITE_OK) {
    database.fail();
  }
  m_statement.reset(statement);
}

bool Statement::next() {
  const int result = sqlite3_step(m_statement.get());
  if (result != SQLITE_DONE && result != SQLITE_ROW) {
    m_database.fail();
  }
  return result == SQLITE_ROW;
}

Statement::Bytes Statement::bytes(int column) const {
  const auto* const begin =
      static_cast<const std::byte*>(sqlite3_column_blob(m_statement.get(), column));
  return {begin, static_cast<std::size_t>(sqlite3_column_bytes(m_statement.get(), column))};
}

void Statement::bind(int place, std::int64_t value) {
  sqlite3_bind_int64(m_statement.get(), place, value);
}

void Statement::bind(int place, double value) {
  sqlite3_bind_double(m_statement.get(), place, value);
}

void Statement::bind(int place, const char* text) {
  sqlite3_bind_text(m_statement.get(), place, text, -1, SQLITE_STATIC);
}

// Whatever characters it holds, zeros included: these tell texts apart, too.
void Statement::bind(int place, const std::string& text) {
  sqlite3_bind_text64(m_statement.get(), place, text.data(), text.size(), SQLITE_STATIC,
                      SQLITE_UTF8);
}

void Statement::bind(int place, Bytes bytes) {
  sqlite3_bind_blob64(m_statement.get(), place, bytes.data(), bytes.size(), SQLITE_STATIC);
}

void Statement::bind(int place, const std::variant<std::int64_t, std::string>& value) {
  const auto* const text = std::get_if<std::string>(&value);
  text != nullptr ? bind(place, *text) : bind(place, std::get<std::int64_t>(value));
}

void Statement::bindNull(int place) {
  sqlite3_bind_null(m_statement.get(), place);
}

}  // namespace grouptracker
