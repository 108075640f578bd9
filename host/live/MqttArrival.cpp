#include "host/live/MqttArrival.h"

#include "host/base/Interruption.h"
#include "host/live/PeopleMessage.h"

#include <fmt/format.h>
#include <simdjson.h>

#include <algorithm>
#include <poll.h>
#include <sys/eventfd.h>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::size_t mostWaiting = std::size_t{64} * 1024 * 1024;  // bytes
const std::size_t longestMessage = MessageLimits().bytes;

/// What a message that waits takes in memory.
std::size_t costOf(const std::string& text) {
  constexpr std::size_t around = 64;  // bytes
  return text.size() + around;
}

bool isWhole(const std::string& object) {
  simdjson::dom::parser parser;
  return parser.parse(object).error() == simdjson::SUCCESS;
}

/// A message as a line or lines. Line ends within an object are blanks between its parts.
std::string linesIn(std::string_view payload) {
  std::string text(payload);
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  const std::size_t end = text.find('\n', begin);
  if (begin != std::string::npos && text[begin] == '{' && end != std::string::npos &&
      !isWhole(text.substr(begin, end - begin))) {
    std::replace(text.begin(), text.end(), '\n', ' ');
  }
  return text + '\n';
}

}  // namespace

MqttArrival::MqttArrival(const MqttAddress& address, const BrokerAccess& access, Warning onWarning,
                         Watch watch)
    : m_address(address),
      m_onWarning(std::move(onWarning)),
      m_watch(std::move(watch)),
      m_ring(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_buffer(*this),
      m_client(address, access,
               {{},
                [this](std::string_view payload) { add(payload); },
                {},
                [this](const std::string& problem) {
                  lose("the broker is away: " + problem, m_tellingLoss);
                },
                [this] { lose("the broker does not let us read the topic", m_tellingDenial); }}) {
  m_client.subscribe();
  m_client.start();
}

bool MqttArrival::waitFor(std::chrono::milliseconds most) {
  warn();
  if (!await(static_cast<int>(most.count()))) {
    return false;
  }
  const std::lock_guard lock(m_mutex);
  if (m_waiting.empty()) {
    calm();
  }
  return !m_waiting.empty();
}

bool MqttArrival::await(int milliseconds) {
  const bool isThere = stop_wish::waitFor(m_ring.get(), POLLIN, milliseconds);
  if (!isThere && stop_wish::isThere()) {
    warnInTheEnd();
    throw InputInterrupted();
  }
  return isThere;
}

/// On the client's thread.
void MqttArrival::add(std::string_view payload) {
  const std::lock_guard lock(m_mutex);
  if (payload.size() > longestMessage) {
    ++m_counts.tooLong;
  } else {
    m_waiting.push_back(linesIn(payload));
    m_counts.waitingBytes += costOf(m_waiting.back());
  }
  while (m_counts.waitingBytes > mostWaiting) {
    m_counts.waitingBytes -= costOf(m_waiting.front());
    m_waiting.pop_front();
    ++m_counts.dropped;
  }
  count();
  ::eventfd_write(m_ring.get(), 1);
}

/// On the client's thread.
void MqttArrival::lose(const std::string& problem, OnceInAWhile& telling) {
  const std::lock_guard lock(m_mutex);
  if (telling.isTime()) {
    m_loss += (m_loss.empty() ? "" : "; ") + problem;
    ::eventfd_write(m_ring.get(), 1);
  }
}

/// The next message; empty when there is none after all.
std::string MqttArrival::take() {
  const std::lock_guard lock(m_mutex);
  std::string text;
  if (!m_waiting.empty()) {
    text = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_counts.waitingBytes -= costOf(text);
    count();
  }
  if (m_waiting.empty()) {
    calm();
  }
  return text;
}

/// The mutex is held.
void MqttArrival::count() const {
  if (m_watch) {
    m_watch(m_counts);
  }
}

/// The mutex is held.
void MqttArrival::calm() const {
  eventfd_t rings = 0;
  ::eventfd_read(m_ring.get(), &rings);
}

/// Says what happened meanwhile.
void MqttArrival::warn() {
  std::string loss;
  std::string passedOver;
  {
    const std::lock_guard lock(m_mutex);
    loss = std::exchange(m_loss, {});
    if (m_counts.tooLong + m_counts.dropped > m_told && m_telling.isTime()) {
      m_told = m_counts.tooLong + m_counts.dropped;
      passedOver = fmt::format(
          "{} messages of more than {} bytes and {} that came faster than they are tracked were "
          "passed over",
          m_counts.tooLong, longestMessage, m_counts.dropped);
    }
  }
  for (const std::string& text : {loss, passedOver}) {
    if (!text.empty()) {
      m_onWarning(text);
    }
  }
}

/// There is no later time.
void MqttArrival::warnInTheEnd() {
  {
    const std::lock_guard lock(m_mutex);
    m_telling = OnceInAWhile();
  }
  warn();
}

MqttArrival::Buffer::int_type MqttArrival::Buffer::underflow() {
  for (;;) {
    m_arrival.warn();
    m_arrival.await(-1);
    m_text = m_arrival.take();
    if (!m_text.empty()) {
      setg(m_text.data(), m_text.data(), m_text.data() + m_text.size());
      return traits_type::to_int_type(*gptr());
    }
  }
}

}  // namespace grouptracker
