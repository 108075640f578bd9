#include "host/live/ArrivingPeople.h"

#include "host/base/InputError.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace grouptracker {

bool JsonMessages::next(PeopleMessage& message) {
  if (!m_lines.nextFilled()) {
    return false;
  }
  try {
    message = m_parser.parse(m_lines.line());
    message.place = m_lines.place();
  } catch (const ValueProblem& problem) {
    throw m_lines.error(problem.what());
  }
  return true;
}

bool ArrivingPeople::next(ObservationStep& step) {
  while (!m_order.next(step)) {
    if (m_hasEnded) {
      if (m_failure) {
        std::rethrow_exception(std::exchange(m_failure, nullptr));
      }
      return false;
    }
    await();
  }
  return true;
}

/// Reads the next message, or lets go what has waited for it long enough.
void ArrivingPeople::await() {
  using std::chrono::ceil;
  using std::chrono::milliseconds;
  try {
    const auto due = m_options.isLive ? m_order.due() : std::nullopt;
    const auto now = ReorderBuffer::Clock::now();
    if (due && (*due <= now || !m_text->arrivesWithin(ceil<milliseconds>(*due - now)))) {
      m_order.expire(ReorderBuffer::Clock::now());
    } else {
      read();
    }
    warn();
  } catch (...) {
    m_failure = std::current_exception();
    end();
  }
}

void ArrivingPeople::read() {
  PeopleMessage message;
  try {
    if (m_reader->next(message)) {
      m_order.add(std::move(message), ReorderBuffer::Clock::now());
    } else {
      end();
    }
  } catch (const InputError& problem) {
    if (m_text->isBroken()) {
      throw;  // there is no next message behind it
    }
    m_options.onProblem(problem);
  }
}

void ArrivingPeople::end() {
  m_order.finish();
  m_hasEnded = true;
  m_telling = OnceInAWhile();
  warn();
}

/// Says what was dropped, at once and then once in a while.
void ArrivingPeople::warn() {
  const ReorderBuffer::Counts counts = m_order.counts();
  if (m_options.watch) {
    m_options.watch(counts);
  }
  const bool isNew = counts.late != m_told.late || counts.duplicates != m_told.duplicates ||
                     counts.missing != m_told.missing || counts.restarts != m_told.restarts;
  if (!isNew || !m_telling.isTime()) {
    return;
  }
  m_told = counts;
  m_options.onWarning(fmt::format(
      "of {} messages {} came too late and {} twice; {} are missing; the sender started "
      "anew {} times",
      counts.messages, counts.late, counts.duplicates, counts.missing, counts.restarts));
}

}  // namespace grouptracker
