#include "host/output/SqliteExport.h"

#include "host/base/PersonNames.h"

namespace grouptracker {

namespace {

constexpr int portion = 250;  // frames from one commit to the next, at most
constexpr std::chrono::seconds longestWait(1);

// With its changes in a file beside it, the database can be read while it is written. These are
// moved into the database at every commit, for whoever copies only that.
const char* const schema = R"(
PRAGMA journal_mode = WAL;
PRAGMA wal_autocheckpoint = 0;
PRAGMA synchronous = OFF;
CREATE TABLE frames(
  frame INTEGER PRIMARY KEY, input_frame INTEGER, decided_at INTEGER NOT NULL,
  persons INTEGER NOT NULL, time REAL);
CREATE TABLE groups(
  id INTEGER PRIMARY KEY, first_frame INTEGER NOT NULL, last_frame INTEGER NOT NULL,
  merged_into INTEGER);
CREATE TABLE members(
  frame INTEGER NOT NULL, group_id INTEGER NOT NULL, person, mobile INTEGER,
  x REAL, y REAL, UNIQUE(frame, group_id, mobile));
CREATE INDEX members_of_group ON members(group_id, frame, person);
CREATE INDEX groups_of_person ON members(person, frame, group_id);
CREATE TABLE events(
  id INTEGER PRIMARY KEY, frame INTEGER NOT NULL, decided_at INTEGER NOT NULL, kind TEXT NOT NULL,
  group_id INTEGER NOT NULL, other_group INTEGER);
CREATE INDEX events_of_group ON events(group_id, frame);
CREATE INDEX events_of_frame ON events(frame);
CREATE TABLE event_persons(
  event_id INTEGER NOT NULL, person NOT NULL, PRIMARY KEY(event_id, person)) WITHOUT ROWID;
CREATE INDEX events_of_person ON event_persons(person, event_id);
CREATE VIEW companions AS
  SELECT a.frame AS frame, a.group_id AS group_id, a.person AS person, b.person AS companion
  FROM members a JOIN members b
  ON b.group_id = a.group_id AND b.frame = a.frame AND b.person <> a.person;
BEGIN;
)";

Database create(const std::string& path) {
  Database database(path);
  database.execute(schema);
  return database;
}

}  // namespace

SqliteExport::SqliteExport(const std::string& path)
    : m_database(create(path)),
      m_frames(m_database, "INSERT INTO frames VALUES(?, ?, ?, ?, ?)"),
      m_groups(m_database,
               "INSERT INTO groups VALUES(?1, ?2, ?2, NULL) "
               "ON CONFLICT(id) DO UPDATE SET last_frame = excluded.last_frame"),
      m_members(m_database, "INSERT OR REPLACE INTO members VALUES(?, ?, ?, ?, ?, ?)"),
      m_events(m_database, "INSERT INTO events VALUES(?, ?, ?, ?, ?, ?)"),
      m_eventPersons(m_database, "INSERT INTO event_persons VALUES(?, ?)"),
      m_merged(m_database,
               "INSERT INTO groups VALUES(?1, ?3, ?3, ?2) "
               "ON CONFLICT(id) DO UPDATE SET merged_into = excluded.merged_into") {}

void SqliteExport::write(const RunStep& step) {
  if (step.reportedFrame < 1) {
    return;
  }
  m_frames.row(std::int64_t{step.reportedFrame}, step.inputFrame, std::int64_t{step.frame},
               static_cast<std::int64_t>(step.persons.size()), step.time);
  writeMembers(step);
  for (const TrackedEvent& event : step.events) {
    writeEvent(event);
  }
  if (++m_framesInPortion == portion || Clock::now() - m_committed >= longestWait) {
    commit();
    m_database.execute("BEGIN");
  }
}

void SqliteExport::writeMembers(const RunStep& step) {
  const std::int64_t at = step.reportedFrame;
  for (const RunGroup& group : step.groups) {
    if (!group.isVisible) {
      continue;
    }
    m_groups.row(std::int64_t{group.id}, at);
    for (const RunMember& member : group.members) {
      const auto x = member.place ? std::optional<double>(member.place->x) : std::nullopt;
      const auto y = member.place ? std::optional<double>(member.place->y) : std::nullopt;
      const auto person = member.person
                              ? std::optional(PersonNames::ofProgram().nameOf(*member.person))
                              : std::nullopt;
      const auto mobile =
          member.mobile ? std::optional<std::int64_t>(*member.mobile) : std::nullopt;
      m_members.row(at, std::int64_t{group.id}, person, mobile, x, y);
    }
  }
}

void SqliteExport::writeEvent(const TrackedEvent& event) {
  const std::int64_t at = event.reportedFrame;
  const auto other = event.other ? std::optional<std::int64_t>(*event.other) : std::nullopt;
  m_events.row(++m_lastEvent, at, std::int64_t{event.frame}, nameOf(event.kind),
               std::int64_t{event.group}, other);
  for (const std::uint32_t person : event.persons) {
    m_eventPersons.row(m_lastEvent, PersonNames::ofProgram().nameOf(person));
  }
  if (event.kind == EventKind::merged) {
    m_merged.row(std::int64_t{event.other.value_or(0)}, std::int64_t{event.group}, at);
  }
}

void SqliteExport::commit() {
  m_database.execute("COMMIT; PRAGMA wal_checkpoint(PASSIVE)");
  m_framesInPortion = 0;
  m_committed = Clock::now();
}

void SqliteExport::finish() {
  commit();
  leaveAlone();
}

/// Makes one file of the database, which can be read where nothing can be written. Not while
/// somebody reads it; then it is left in two.
void SqliteExport::leaveAlone() {
  sqlite3_exec(m_database.handle(), "PRAGMA journal_mode = DELETE", nullptr, nullptr, nullptr);
}

}  // namespace grouptracker
