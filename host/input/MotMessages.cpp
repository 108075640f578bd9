#include "host/input/MotMessages.h"

#include "host/base/InputError.h"

#include <algorithm>
#include <utility>

namespace grouptracker {

bool MotMessages::next(PeopleMessage& message) {
  if (m_next) {
    start(*std::exchange(m_next, std::nullopt));
  }
  while (m_lines.nextFilled()) {
    try {
      const MotRow row = m_parser.parse(m_lines);
      if (!m_open.frame || row.frame == *m_open.frame) {
        add(row);
        continue;
      }
      if (row.frame < *m_open.frame && !m_isTopic) {
        throw ValueProblem(
            "the frame is earlier than the one of the line before; lines that arrive must be in "
            "order, those of a file need not");
      }
      check(row);
      m_next = row;
    } catch (const ValueProblem& problem) {
      throw m_lines.error(problem.what());
    }
    message = std::exchange(m_open, PeopleMessage());
    return true;
  }
  message = std::exchange(m_open, PeopleMessage());
  return message.frame.has_value();
}

void MotMessages::start(const MotRow& row) {
  m_open = PeopleMessage();
  m_open.frame = row.frame;
  m_open.place = m_lines.place();
  if (row.seen) {
    m_open.people.push_back(*row.seen);
  }
}

void MotMessages::check(const MotRow& row) const {
  if (row.seen && !row.seen->position && !m_hasCamera) {
    throw ValueProblem("there is a box only, for which --calibration is needed in a pipe");
  }
}

void MotMessages::add(const MotRow& row) {
  check(row);
  if (!m_open.frame) {
    start(row);
    return;
  }
  if (!row.seen) {
    return;
  }
  const auto place = std::lower_bound(
      m_open.people.begin(), m_open.people.end(), row.seen->person,
      [](const Observation& seen, std::uint32_t person) { return seen.person < person; });
  if (place != m_open.people.end() && place->person == row.seen->person) {
    throw ValueProblem("person " + std::to_string(row.seen->person) + " is observed twice");
  }
  if (m_open.people.size() == m_mostPeople) {
    throw ValueProblem(tooMany(m_mostPeople));
  }
  m_open.people.insert(place, *row.seen);
}

}  // namespace grouptracker
