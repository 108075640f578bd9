#include "host/live/ReorderBuffer.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::size_t fewestDistances = 3;  // from which the usual one is told
constexpr std::size_t mostDistances = 15;
constexpr double irregularity = 1.5;       // usual distances up to which nobody is missed
constexpr double longestGap = 10.0;        // seconds; longer ones are pauses
constexpr double mostMissing = 1000.0;     // steps that a gap can be filled with
constexpr std::size_t mostHeld = 1000;     // messages
constexpr std::size_t restartAfter = 5;    // messages in a row that are too late
constexpr std::size_t mostRepeated = 100;  // messages that a sender may repeat

}  // namespace

void ReorderBuffer::add(PeopleMessage message, Clock::time_point now) {
  ++m_counts.messages;
  if (!chooseOrder(message)) {
    ++m_counts.late;
    return;
  }
  const auto key = keyOf(message);
  if (!key) {
    put(std::nullopt, std::move(message));
  } else if (m_held.contains(*key) || key == m_lastKey || isRepeated(*key, message)) {
    ++m_counts.duplicates;
  } else if (m_lastKey && *key < *m_lastKey && isLate(*key, message)) {
    ++m_counts.late;
  } else if (m_lastKey && *key < *m_lastKey) {
    addEarlier(*key, {std::move(message), now});
  } else {
    m_counts.late += m_earlier.size();
    m_earlier.clear();
    m_held.emplace(*key, Held{std::move(message), now});
    releaseWhatFollows();
  }
}

bool ReorderBuffer::next(ObservationStep& step) {
  if (m_ready.empty()) {
    return false;
  }
  step = std::move(m_ready.front());
  m_ready.pop_front();
  return true;
}

std::optional<ReorderBuffer::Clock::time_point> ReorderBuffer::due() const {
  if (m_held.empty()) {
    return std::nullopt;
  }
  return m_held.begin()->second.arrived +
         std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(m_maxLateness));
}

void ReorderBuffer::expire(Clock::time_point now) {
  for (auto end = due(); end && *end <= now; end = due()) {
    releaseFirst();
    releaseWhatFollows();
  }
}

void ReorderBuffer::finish() {
  while (!m_held.empty()) {
    releaseFirst();
  }
  m_counts.late += m_earlier.size();
  m_earlier.clear();
}

ReorderBuffer::Counts ReorderBuffer::counts() const {
  Counts counts = m_counts;
  counts.waiting = m_held.size() + m_earlier.size();
  return counts;
}

ReorderBuffer::Order ReorderBuffer::orderOf(const PeopleMessage& message) {
  return message.frame ? Order::numbers : message.time ? Order::times : Order::arrival;
}

/// Whether a message has what gives the order, which several that have not change.
bool ReorderBuffer::chooseOrder(const PeopleMessage& message) {
  if (m_order == Order::arrival) {
    m_order = orderOf(message);
  }
  if (m_order == Order::arrival || keyOf(message)) {
    m_strange = 0;
    return true;
  }
  if (++m_strange < restartAfter) {
    return false;
  }
  finish();
  forgetOrder();
  m_strange = 0;
  m_order = orderOf(message);
  return true;
}

std::optional<double> ReorderBuffer::keyOf(const PeopleMessage& message) const {
  if (!hasNumbers()) {
    return message.time;
  }
  return message.frame ? std::optional(static_cast<double>(*message.frame)) : std::nullopt;
}

ReorderBuffer::Likeness ReorderBuffer::likenessOf(double key, const PeopleMessage& message) {
  std::size_t people = message.people.size();
  const auto mix = [&people](double number) {
    constexpr std::size_t odd = 0x9E3779B97F4A7C15;  // the golden ratio: spreads all bits
    people = (people ^ std::hash<double>()(number)) * odd;
  };
  for (const Observation& seen : message.people) {
    const cv::Point2d at = seen.position.value_or(cv::Point2d());
    const cv::Point2d corner = seen.box2D ? seen.box2D->tl() : cv::Point2d();
    for (const double number : {static_cast<double>(seen.person), at.x, at.y, corner.x, corner.y}) {
      mix(number);
    }
  }
  return {key, message.time, people};
}

bool ReorderBuffer::isRepeated(double key, const PeopleMessage& message) const {
  return m_lastKey && key < *m_lastKey &&
         std::find(m_recent.begin(), m_recent.end(), likenessOf(key, message)) != m_recent.end();
}

/// Whether an earlier message is one of those that were given up, as its time tells: even many of
/// these are no new beginning.
bool ReorderBuffer::isLate(double key, const PeopleMessage& message) const {
  const std::optional<double> time = hasNumbers() ? message.time : std::optional(key);
  const std::optional<double> last = hasNumbers() ? m_lastTime : m_lastKey;
  return time && last && *time <= *last && *time > *last - longestGap;
}

/// One earlier message is dropped; several in a row that grow are a new beginning.
void ReorderBuffer::addEarlier(double key, Held held) {
  if (!m_earlier.empty() && key <= *keyOf(m_earlier.back().message)) {
    m_counts.late += m_earlier.size();
    m_earlier.clear();
  }
  m_earlier.push_back(std::move(held));
  if (m_earlier.size() == restartAfter) {
    startAnew();
  }
}

void ReorderBuffer::startAnew() {
  std::vector<Held> beginning = std::exchange(m_earlier, {});
  finish();
  forgetOrder();
  for (Held& held : beginning) {
    const double key = *keyOf(held.message);
    m_held.emplace(key, std::move(held));
  }
  while (!m_held.empty()) {
    releaseFirst();  // they came one behind the other
  }
}

void ReorderBuffer::forgetOrder() {
  ++m_counts.restarts;
  m_lastKey.reset();
  m_lastTime.reset();
  m_distances.clear();
}

void ReorderBuffer::releaseWhatFollows() {
  while (!m_held.empty() && (follows(m_held.begin()->first) || isOverdue())) {
    releaseFirst();
  }
}

void ReorderBuffer::releaseFirst() {
  auto first = m_held.extract(m_held.begin());
  release(first.key(), std::move(first.mapped().message));
}

/// Whether nothing can be missing before a key.
bool ReorderBuffer::follows(double key) const {
  if (!m_lastKey) {
    return false;
  }
  const double distance = key - *m_lastKey;
  return (hasNumbers() && distance == 1.0) ||
         (m_distances.size() >= fewestDistances && distance < irregularity * spacing());
}

/// Whether the first has been waited for by the messages' own time.
bool ReorderBuffer::isOverdue() const {
  const auto& first = m_held.begin()->second.message.time;
  const auto& latest = std::prev(m_held.end())->second.message.time;
  return m_maxLateness <= 0.0 || m_held.size() > mostHeld ||
         (first && latest && *latest - *first >= m_maxLateness);
}

/// The median of the latest distances.
double ReorderBuffer::spacing() const {
  std::vector<double> sorted(m_distances.begin(), m_distances.end());
  const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
  std::nth_element(sorted.begin(), middle, sorted.end());
  return *middle;
}

void ReorderBuffer::release(double key, PeopleMessage message) {
  if (m_lastKey) {
    fillGap(key, message);
    m_distances.push_back(key - *m_lastKey);
    if (m_distances.size() > mostDistances) {
      m_distances.pop_front();
    }
  }
  m_recent.push_back(likenessOf(key, message));
  if (m_recent.size() > mostRepeated) {
    m_recent.pop_front();
  }
  put(key, std::move(message));
}

void ReorderBuffer::fillGap(double key, const PeopleMessage& next) {
  if (m_distances.size() < fewestDistances) {
    return;
  }
  const double gap = key - *m_lastKey;
  const double steps = std::round(gap / spacing());
  const std::optional<double> seconds =
      next.time && m_lastTime ? std::optional(*next.time - *m_lastTime) : std::nullopt;
  if (steps < 2.0 || steps > mostMissing || seconds.value_or(0.0) > longestGap ||
      seconds.value_or(0.0) < 0.0) {
    return;
  }
  const double firstKey = *m_lastKey;
  const double firstTime = m_lastTime.value_or(0.0);
  for (double step = 1.0; step < steps; step += 1.0) {
    PeopleMessage missing;
    missing.place = next.place;
    const double part = step / steps;
    const double at = firstKey + std::round(gap * part);
    missing.frame = hasNumbers() ? std::optional(static_cast<std::int64_t>(at)) : std::nullopt;
    missing.time = seconds ? std::optional(firstTime + *seconds * part) : std::nullopt;
    put(hasNumbers() ? at : firstKey + gap * part, std::move(missing));
    ++m_counts.missing;
  }
  m_lastKey = firstKey;  // the distance to the next message is a true one
}

void ReorderBuffer::put(std::optional<double> key, PeopleMessage message) {
  ObservationStep step;
  ++m_steps;
  step.frame = hasNumbers() && message.frame ? *message.frame : m_steps;
  step.time = message.time;
  step.place = std::move(message.place);
  step.observations = std::move(message.people);
  m_lastKey = key ? key : m_lastKey;
  m_lastTime = step.time;
  m_ready.push_back(std::move(step));
}

}  // namespace grouptracker
