#include "host/publish/Publisher.h"

#include <fmt/format.h>

#include <utility>

namespace grouptracker {

namespace {

constexpr std::chrono::seconds patience(10);  // for a broker that answers
constexpr std::chrono::seconds farewellPatience(1);
const char* const eventsTopic = "/events";
const char* const nowTopic = "/now";
const char* const statusTopic = "/status";
const char* const online = "online";
const char* const offline = "offline";

}  // namespace

Publisher::Publisher(const PublishOptions& options)
    : m_options(options),
      m_address(MqttAddress::parse(options.address)),
      m_spool(options.spoolFile, options.spoolBytes),
      m_client(m_address, options.access,
               {[this] { guarded([this] { connected(); }); },
                {},
                [this](int message) {
                  guarded([this, message] { accepted(message); });
                  settle();
                },
                [this](const std::string& problem) {
                  lose(problem);
                  settle();
                },
                {}},
               MqttWill{m_address.topic + statusTopic, offline}) {
  m_client.start();
}

// Whoever leaves before the answer to his last words has come may be taken for dead, with a will.
Publisher::~Publisher() {
  std::unique_lock lock(m_mutex);
  if (m_client.isConnected()) {
    m_farewell = m_client.publish(m_address.topic + statusTopic, offline, true).message;
    m_changed.wait_for(lock, farewellPatience, [this] { return !m_farewell || m_isAway; });
  }
}

void Publisher::publish(const std::vector<Outgoing>& messages) {
  {
    const std::lock_guard lock(m_mutex);
    rethrow();
    m_spool.append(messages);
    pump();
  }
  warn();
}

void Publisher::show(const std::string& now) {
  const std::lock_guard lock(m_mutex);
  m_now = now;
  m_isNew = true;
  showNow();
}

void Publisher::finish() {
  {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, patience, [this] {
      return (m_spool.messages() == 0 && !m_shown) || m_isAway || m_failure;
    });
    m_tellingDrops = OnceInAWhile();  // there is no later time
  }
  warn();
  const std::lock_guard lock(m_mutex);
  rethrow();
  if (m_spool.messages() > 0) {
    m_options.onWarning(
        m_spool.isFile()
            ? fmt::format("{} messages wait in {} for the broker", m_spool.messages(),
                          m_options.spoolFile)
            : fmt::format("{} messages could not be published and are lost without --spool",
                          m_spool.messages()));
  }
}

Publisher::Counts Publisher::counts() const {
  const std::lock_guard lock(m_mutex);
  return {m_published, m_spool.messages(), m_spool.bytes(), m_spool.dropped() + m_refused,
          m_client.isConnected()};
}

/// On the client's thread, as the two that follow.
void Publisher::connected() {
  m_isAway = false;
  greet();
  m_isNew = true;  // a broker that was away may have forgotten
  showNow();
  pump();
}

void Publisher::accepted(int message) {
  if (message == m_farewell) {
    m_farewell.reset();
    m_changed.notify_all();
  }
  if (message == m_greeting) {
    m_greeting.reset();
  }
  if (message == m_shown) {
    m_shown.reset();
    showNow();
    m_changed.notify_all();
  }
  const auto found = m_inFlight.find(message);
  if (found == m_inFlight.end()) {
    return;  // the status, or what holds now
  }
  m_spool.remove(found->second);
  m_inFlight.erase(found);
  m_isRepeating = m_isRepeating && !m_inFlight.empty();
  ++m_published;
  pump();
  m_changed.notify_all();
}

void Publisher::lose(const std::string& problem) {
  const std::lock_guard lock(m_mutex);
  m_isAway = true;
  // Already now: the client is connected a moment before it says so.
  m_isRepeating = !m_inFlight.empty();
  m_loss = m_tellingLoss.isTime() ? problem : m_loss;
  m_changed.notify_all();
}

/// On the client's thread, without the mutex: the tracking does not wait for the disk.
void Publisher::settle() {
  {
    const std::lock_guard lock(m_mutex);
    if (!m_spool.isUnsettled()) {
      return;
    }
  }
  try {
    m_spool.settle();
  } catch (...) {
    const std::lock_guard lock(m_mutex);
    keepFailure();
  }
}

/// Hands over what the client may have at once.
void Publisher::pump() {
  while (m_client.isConnected() && !m_isRepeating && m_inFlight.size() < MqttClient::mostInFlight) {
    const auto next = m_spool.nextAfter(m_lastSent);
    if (!next) {
      return;
    }
    const char* const topic = next->channel == Channel::events ? eventsTopic : "";
    const MqttHandover sent = m_client.publish(m_address.topic + topic, next->payload, false);
    if (sent.message) {
      m_inFlight.emplace(*sent.message, next->id);
    } else if (!sent.refusal.empty()) {
      drop(next->id, sent.refusal);
    } else {
      return;
    }
    m_lastSent = next->id;
  }
}

/// A message that can never be sent holds up no other.
void Publisher::drop(std::int64_t id, const std::string& refusal) {
  m_spool.remove(id);
  m_refusal = refusal;
  ++m_refused;
}

/// Once only: the client repeats what the broker has not accepted.
void Publisher::greet() {
  if (!m_greeting) {
    m_greeting = m_client.publish(m_address.topic + statusTopic, online, true).message;
  }
}

/// One after the other, so that an older one, which the client repeats, never comes behind.
void Publisher::showNow() {
  if (m_isNew && !m_now.empty() && !m_shown && m_client.isConnected()) {
    m_shown = m_client.publish(m_address.topic + nowTopic, m_now, true).message;
    m_isNew = !m_shown;
  }
}

/// Says what the other thread has met.
void Publisher::warn() {
  std::string loss;
  std::string drops;
  {
    const std::lock_guard lock(m_mutex);
    loss = std::exchange(m_loss, {});
    drops = dropWarning();
  }
  if (!loss.empty()) {
    m_options.onWarning("the broker is away: " + loss);
  }
  if (!drops.empty()) {
    m_options.onWarning(drops);
  }
}

/// Empty when there is nothing to say.
std::string Publisher::dropWarning() {
  const std::uint64_t drops = m_spool.dropped() + m_refused;
  if (drops == m_toldDrops || !m_tellingDrops.isTime()) {
    return "";
  }
  m_toldDrops = drops;
  std::string warning;
  if (m_spool.dropped() > 0) {
    warning =
        fmt::format("the spool is full: the oldest {} messages were dropped", m_spool.dropped());
  }
  if (m_refused > 0) {
    warning += fmt::format("{}{} messages cannot be sent and were dropped: {}",
                           warning.empty() ? "" : "; ", m_refused, m_refusal);
  }
  return warning;
}

/// The library that calls knows no exceptions.
template <typename Action>
void Publisher::guarded(const Action& action) {
  const std::lock_guard lock(m_mutex);
  try {
    action();
  } catch (...) {
    keepFailure();
  }
}

/// The mutex is held.
void Publisher::keepFailure() {
  m_failure = m_failure ? m_failure : std::current_exception();
  m_changed.notify_all();
}

void Publisher::rethrow() {
  if (m_failure) {
    std::rethrow_exception(std::exchange(m_failure, nullptr));
  }
}

}  // namespace grouptracker
