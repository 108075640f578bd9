#include "host/publish/Spool.h"

#include <fmt/format.h>

#include <algorithm>

namespace grouptracker {

namespace {

constexpr std::int64_t spoolMark = 0x47545350;  // "GTSP": tells a spool from other databases

// A commit reaches the operating system, which outlives the program; what a power failure takes are
// the last moments. The log is brought to its place by `settle()` alone, as that waits for the
// disk.
const char* const prepareFile = "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL";
const char* const makeTables = R"(
CREATE TABLE IF NOT EXISTS messages(
  id INTEGER PRIMARY KEY, channel INTEGER NOT NULL, payload BLOB NOT NULL);
CREATE TABLE IF NOT EXISTS counters(channel INTEGER PRIMARY KEY, last INTEGER NOT NULL)
)";

// Pages of 4 KiB, of which each message takes some ten.
constexpr int somePages = 8 * 1024;
constexpr int manyPages = 2 * somePages;

std::int64_t numberOf(const Database& database, const char* sql) {
  Statement statement(database, sql);
  return statement.next() ? statement.number(0) : 0;
}

std::span<const std::byte> bytesOf(const std::string& text) {
  return std::as_bytes(std::span(text.data(), text.size()));
}

}  // namespace

Spool::Spool(const std::string& path, std::size_t capacity)
    : m_isFile(!path.empty()),
      m_capacity(capacity),
      m_database(open(path)),
      m_insert(*m_database, "INSERT INTO messages VALUES(?, ?, ?)"),
      m_count(*m_database, "INSERT OR REPLACE INTO counters VALUES(?, ?)"),
      m_next(*m_database,
             "SELECT id, channel, payload FROM messages WHERE id > ? ORDER BY id LIMIT 1"),
      m_size(*m_database, "SELECT length(payload) FROM messages WHERE id = ?"),
      m_delete(*m_database, "DELETE FROM messages WHERE id = ?") {
  readState();
  if (!m_isFile) {
    return;
  }
  m_settling = Database::beside(*m_database);
  const auto noteSize = [](void* spool, sqlite3*, const char*, int pages) {
    static_cast<Spool*>(spool)->m_loggedPages = pages;
    return SQLITE_OK;
  };
  sqlite3_wal_hook(m_database->handle(), noteSize, this);  // instead of settling at once
}

std::unique_ptr<Database> Spool::open(const std::string& path) {
  auto database =
      path.empty() ? Database::inMemory() : std::make_unique<Database>(path, OldContent::kept);
  const bool isNew = numberOf(*database, "SELECT count(*) FROM sqlite_master") == 0;
  if (!isNew && numberOf(*database, "PRAGMA application_id") != spoolMark) {
    throw OutputError(path, "is a database, but no spool");
  }
  database->execute(fmt::format("PRAGMA application_id = {}", spoolMark).c_str());
  if (!path.empty()) {
    database->execute(prepareFile);
  }
  database->execute(makeTables);
  return database;
}

void Spool::readState() {
  // Numbers that were given out once are not given out again.
  m_lastId = std::max(m_lastId, numberOf(*m_database, "SELECT max(id) FROM messages"));
  m_messages = static_cast<std::uint64_t>(numberOf(*m_database, "SELECT count(*) FROM messages"));
  m_bytes =
      static_cast<std::size_t>(numberOf(*m_database, "SELECT sum(length(payload)) FROM messages"));
  m_counters = {};
  Statement counters(*m_database, "SELECT channel, last FROM counters");
  while (counters.next()) {
    const std::int64_t channel = counters.number(0);
    if (channel >= 0 && channel < channels) {
      m_counters.at(static_cast<std::size_t>(channel)) = counters.number(1);
    }
  }
}

void Spool::append(const std::vector<Outgoing>& messages) {
  const std::uint64_t dropped = m_dropped;
  try {
    write(messages);
  } catch (...) {
    m_database->rollBack();
    m_dropped = dropped;
    readState();
    throw;
  }
}

void Spool::write(const std::vector<Outgoing>& messages) {
  m_database->execute("BEGIN");
  for (const Outgoing& message : messages) {
    keep(message);
  }
  while (m_bytes > m_capacity && m_messages > messages.size()) {
    dropOldest();
  }
  for (int channel = 0; channel < channels; ++channel) {
    m_count.row(std::int64_t{channel}, m_counters.at(static_cast<std::size_t>(channel)));
  }
  m_database->execute("COMMIT");
}

void Spool::keep(const Outgoing& message) {
  const auto channel = static_cast<std::size_t>(message.channel);
  const std::string payload =
      fmt::format("{{\"sequence\": {}, {}", ++m_counters.at(channel), message.object.substr(1));
  m_insert.row(++m_lastId, static_cast<std::int64_t>(channel), bytesOf(payload));
  ++m_messages;
  m_bytes += payload.size();
}

void Spool::dropOldest() {
  if (const auto oldest = nextAfter(0)) {
    remove(oldest->id);
    ++m_dropped;
  }
}

std::optional<Spool::Message> Spool::nextAfter(std::int64_t id) {
  m_next.start(id);
  if (!m_next.next()) {
    return std::nullopt;
  }
  const Statement::Bytes bytes = m_next.bytes(2);
  const Message message{m_next.number(0), static_cast<Channel>(m_next.number(1)),
                        std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size())};
  m_next.reset();  // a query that is not over would hold back the end of a transaction
  return message;
}

void Spool::remove(std::int64_t id) {
  m_size.start(id);
  if (!m_size.next()) {
    return;
  }
  const auto size = static_cast<std::size_t>(m_size.number(0));
  m_size.reset();
  m_delete.row(id);
  --m_messages;
  m_bytes -= size;
}

bool Spool::isUnsettled() const {
  return m_loggedPages > (m_messages == 0 ? somePages : manyPages);
}

void Spool::settle() {
  if (m_settling) {
    m_settling->execute("PRAGMA wal_checkpoint(PASSIVE)");
  }
}

}  // namespace grouptracker
