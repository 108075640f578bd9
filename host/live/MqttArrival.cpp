#include "host/live/MqttArrival.h"

#include "host/base/Interruption.h"
#include "host/live/PeopleMessage.h"

#include <fmt/format.h>

#include <algorithm>
#include <poll.h>
#include <sys/eventfd.h>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::size_t mostWaiting = std::size_t{64} * 1024 * 1024;  // bytes
const std::size_t longestMessage = MessageLimits().bytes;

/// A message as a line or lines. Line ends within an object are blanks between its parts.
std::string linesIn(std::string_view payload) {
  std::string text(payload);
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin != std::string::npos && text[begin] == '{') {
    std::replace(text.begin(), text.end(), '\n', ' ');
  }
  return text + '\n';
}

}  // namespace

MqttArrival::MqttArrival(const MqttAddress& address, const BrokerAccess& access, Warning onWarning)
    : m_address(address),
      m_onWarning(std::move(onWarning)),
      m_ring(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_buffer(*this),
      m_client(address, access,
               {{},
                [this](std::string_view payload) { add(payload); },
                {},
                [this](const std::string& problem) { lose(problem); }}) {
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

bool MqttArrival::await(int milliseconds) const {
  const bool isThere = stop_wish::waitFor(m_ring.get(), POLLIN, milliseconds);
  if (!isThere && stop_wish::isThere()) {
    throw InputInterrupted();
  }
  return isThere;
}

/// On the client's thread.
void MqttArrival::add(std::string_view payload) {
  const std::lock_guard lock(m_mutex);
  if (payload.size() > longestMessage) {
    ++m_tooLong;
  } else {
    m_waiting.push_back(linesIn(payload));
    m_waitingBytes += m_waiting.back().size();
  }
  while (m_waitingBytes > mostWaiting) {
    m_waitingBytes -= m_waiting.front().size();
    m_waiting.pop_front();
    ++m_dropped;
  }
  ::eventfd_write(m_ring.get(), 1);
}

/// On the client's thread.
void MqttArrival::lose(const std::string& problem) {
  const std::lock_guard lock(m_mutex);
  if (m_tellingLoss.isTime()) {
    m_loss = problem;
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
    m_waitingBytes -= text.size();
  }
  if (m_waiting.empty()) {
    calm();
  }
  return text;
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
    loss = m_loss.empty() ? "" : "the broker is away: " + std::exchange(m_loss, {});
    if (m_tooLong + m_dropped > m_told && m_telling.isTime()) {
      m_told = m_tooLong + m_dropped;
      passedOver = fmt::format(
          "{} messages of more than {} bytes and {} that came faster than they are tracked were "
          "passed over",
          m_tooLong, longestMessage, m_dropped);
    }
  }
  for (const std::string& text : {loss, passedOver}) {
    if (!text.empty()) {
      m_onWarning(text);
    }
  }
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
