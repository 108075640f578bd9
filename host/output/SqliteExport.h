#pragma once

#include "host/base/Database.h"
#include "host/run/StepSink.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

namespace grouptracker {

/// Writes the run into an SQLite database:
///
///     frames(frame, input_frame, decided_at, persons, time)
///     groups(id, first_frame, last_frame, merged_into)
///     members(frame, group_id, person, mobile, x, y)
///     events(id, frame, decided_at, kind, group_id, other_group)
///     event_persons(event_id, person)
///     companions(frame, group_id, person, companion), a view
///
/// `frame` is everywhere the reported frame, `decided_at` the frame at which it was decided, both
/// counted from 1; `input_frame` is the input's own number, `time` its seconds. x and y are metres
/// on the ground. Members are those of visible groups. Indexes answer at once who was in a group,
/// in which groups a person was, and who was with whom when. The file is a sound database at any
/// time, at most a second behind what was written, and can be read meanwhile: neither waits for the
/// other.
class SqliteExport : public StepSink {
 public:
  explicit SqliteExport(const std::string& path);

  void write(const RunStep& step) override;
  void finish() override;

 private:
  using Clock = std::chrono::steady_clock;

  void writeMembers(const RunStep& step);
  void writeEvent(const TrackedEvent& event);
  void commit();
  void leaveAlone();

  Database m_database;
  Statement m_frames;
  Statement m_groups;
  Statement m_members;
  Statement m_events;
  Statement m_eventPersons;
  Statement m_merged;
  std::int64_t m_lastEvent = 0;
  int m_framesInPortion = 0;
  Clock::time_point m_committed = Clock::now();
};

}  // namespace grouptracker
