#include "host/people/ObservationSpool.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>

namespace grouptracker {

namespace {

static_assert(std::is_trivially_copyable_v<ObservationRow>, "rows are kept as they are");

bool isBefore(const ObservationRow& a, const ObservationRow& b) {
  return std::tie(a.frame, a.observation.person, a.line) <
         std::tie(b.frame, b.observation.person, b.line);
}

void sort(std::vector<ObservationRow>& rows) {
  if (!std::is_sorted(rows.begin(), rows.end(), isBefore)) {
    std::sort(rows.begin(), rows.end(), isBefore);
  }
}

}  // namespace

void ObservationSpool::add(const ObservationRow& row) {
  if (m_rows.size() == m_capacity) {
    moveToTable();
  }
  m_rows.push_back(row);
}

void ObservationSpool::finish() {
  if (m_table) {
    moveToTable();
  } else {
    sort(m_rows);
  }
  rewind();
}

void ObservationSpool::rewind() {
  m_nextRow = 0;
  if (m_table) {
    m_table->query.start();
  }
}

bool ObservationSpool::next(ObservationRow& row) {
  if (!m_table) {
    const bool isThere = m_nextRow < m_rows.size();
    row = isThere ? m_rows[m_nextRow++] : row;
    return isThere;
  }
  if (!m_table->query.next()) {
    return false;
  }
  std::memcpy(&row, m_table->query.bytes(0).data(), sizeof row);
  return true;
}

void ObservationSpool::moveToTable() {
  if (!m_table) {
    auto database = Database::temporary();
    // The number tells rows of one line apart.
    database->execute(
        "CREATE TABLE rows (frame INTEGER, person INTEGER, line INTEGER, number INTEGER, row BLOB, "
        "PRIMARY KEY (frame, person, line, number)) WITHOUT ROWID");
    const Database& made = *database;
    m_table.emplace(
        Table{std::move(database), Statement(made, "INSERT INTO rows VALUES (?, ?, ?, ?, ?)"),
              Statement(made, "SELECT row FROM rows ORDER BY frame, person, line, number")});
  }
  sort(m_rows);  // what is already in order is inserted much faster
  for (const ObservationRow& row : m_rows) {
    m_table->insertion.row(
        row.frame, std::int64_t{row.observation.person}, static_cast<std::int64_t>(row.line),
        static_cast<std::int64_t>(m_nextRow++), std::as_bytes(std::span(&row, 1)));
  }
  m_rows.clear();
}

}  // namespace grouptracker
