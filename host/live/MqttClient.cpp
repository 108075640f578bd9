#include "host/live/MqttClient.h"

#include "host/base/FileDescriptor.h"
#include "host/base/InputError.h"
#include "host/live/MosquittoLibrary.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <mosquitto.h>
#include <new>
#include <random>
#include <stdexcept>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace grouptracker {

namespace {

constexpr int keepAlive = 15;      // seconds after which a silent connection is lost
constexpr int serviceQuality = 1;  // at least once
constexpr int longestLoop = 1000;  // ms
constexpr int denied = 0x80;       // in place of a quality of service that is granted
constexpr int farewells = 20;      // loops in which the last words may leave
constexpr int farewellLoop = 50;   // ms
constexpr std::chrono::milliseconds shortestPause(200);
constexpr std::chrono::milliseconds longestPause(5000);
const char* const trustedCertificates = "/etc/ssl/certs";

const MosquittoLibrary& library() {
  return MosquittoLibrary::loaded();
}

void expectLibrary(const MqttAddress& address) {
  try {
    library();
  } catch (const std::runtime_error& missing) {
    throw InputError(address.text(), missing.what());
  }
}

std::string problemOf(int result) {
  return result == MOSQ_ERR_ERRNO ? std::strerror(errno) : library().strerror(result);
}

/// The library would wait for somebody who writes a pipe, and know of no stop.
void expectFile(const std::string& file) {
  if (!file.empty() && ::access(file.c_str(), R_OK) != 0) {
    throw InputError(file, systemProblem("cannot be read"));
  }
  std::error_code ignored;
  if (!file.empty() && !std::filesystem::is_regular_file(file, ignored)) {
    throw InputError(file, "a regular file is expected");
  }
}

/// A name that no other client has.
std::string freshName() {
  std::random_device random;
  return fmt::format("groups-{:08x}{:08x}", random(), random());
}

/// Whether a message was refused for what it is, rather than for the state of the connection.
bool isForGood(int result) {
  return result == MOSQ_ERR_INVAL || result == MOSQ_ERR_MALFORMED_UTF8 ||
         result == MOSQ_ERR_PAYLOAD_SIZE || result == MOSQ_ERR_OVERSIZE_PACKET ||
         result == MOSQ_ERR_NOT_SUPPORTED;
}

const char* nullIfEmpty(const std::string& text) {
  return text.empty() ? nullptr : text.c_str();
}

}  // namespace

/// What the library calls, on the client's thread.
struct MqttClient::Callbacks {
  static MqttClient& self(void* object) { return *static_cast<MqttClient*>(object); }

  static void connected(mosquitto* /*client*/, void* object, int refusal) {
    MqttClient& client = self(object);
    if (refusal != 0) {
      client.tellLoss(library().connackString(refusal));
      return;
    }
    client.m_isConnected = true;
    client.m_pause = shortestPause;
    if (client.m_isSubscribed) {
      client.subscribe();
    }
    if (client.m_events.onConnected) {
      client.m_events.onConnected();
    }
  }
  static void disconnected(mosquitto* /*client*/, void* object, int /*reason*/) {
    self(object).m_isConnected = false;
  }
  static void message(mosquitto* /*client*/, void* object, const mosquitto_message* message) {
    const MqttClient& client = self(object);
    if (client.m_events.onMessage) {
      client.m_events.onMessage({static_cast<const char*>(message->payload),
                                 static_cast<std::size_t>(message->payloadlen)});
    }
  }
  static void subscribed(mosquitto* /*client*/, void* object, int /*message*/, int topics,
                         const int* granted) {
    const MqttClient& client = self(object);
    if (topics > 0 && granted[0] == denied && client.m_events.onDenied) {
      client.m_events.onDenied();
    }
  }
  static void accepted(mosquitto* /*client*/, void* object, int message) {
    const MqttClient& client = self(object);
    if (client.m_events.onAccepted) {
      client.m_events.onAccepted(message);
    }
  }
};

void MqttClient::Destroy::operator()(mosquitto* client) const {
  library().destroy(client);
}

MqttClient::MqttClient(const MqttAddress& address, const BrokerAccess& access, MqttEvents events,
                       const std::optional<MqttWill>& will)
    : m_address(address), m_events(std::move(events)), m_pause(shortestPause) {
  expectLibrary(m_address);
  m_client.reset(library().make(freshName().c_str(), true, this));
  if (!m_client) {
    throw std::bad_alloc();
  }
  mosquitto* const client = m_client.get();
  library().threadedSet(client, true);
  library().maxInflightMessagesSet(client, mostInFlight);
  library().intOption(client, MOSQ_OPT_TCP_NODELAY, 1);  // a short message waits for no other
  library().connectCallbackSet(client, Callbacks::connected);
  library().disconnectCallbackSet(client, Callbacks::disconnected);
  library().messageCallbackSet(client, Callbacks::message);
  library().publishCallbackSet(client, Callbacks::accepted);
  library().subscribeCallbackSet(client, Callbacks::subscribed);
  const BrokerLogin login = BrokerLogin::read(access);
  if (!login.user.empty()) {
    library().usernamePwSet(client, login.user.c_str(), nullIfEmpty(login.password));
  }
  if (will) {
    library().willSet(client, will->topic.c_str(), static_cast<int>(will->payload.size()),
                      will->payload.data(), serviceQuality, true);
  }
  if (m_address.isSecure) {
    secure(access);
  }
}

void MqttClient::secure(const BrokerAccess& access) {
  for (const std::string* const file : {&access.caFile, &access.certificateFile, &access.keyFile}) {
    expectFile(*file);
  }
  const int result =
      library().tlsSet(m_client.get(), nullIfEmpty(access.caFile),
                       access.caFile.empty() ? trustedCertificates : nullptr,
                       nullIfEmpty(access.certificateFile), nullIfEmpty(access.keyFile), nullptr);
  if (result != MOSQ_ERR_SUCCESS) {
    throw InputError(m_address.text(),
                     "TLS is not possible with these files: " + problemOf(result));
  }
}

MqttClient::~MqttClient() {
  {
    const std::lock_guard lock(m_mutex);
    m_isEnding = true;
    m_ending.notify_all();
  }
  if (m_thread.joinable()) {
    library().disconnect(m_client.get());
    m_thread.join();
  }
}

void MqttClient::start() {
  m_thread = std::thread([this] { work(); });
}

void MqttClient::subscribe() {
  m_isSubscribed = true;
  library().subscribe(m_client.get(), nullptr, m_address.topic.c_str(), serviceQuality);
}

MqttHandover MqttClient::publish(const std::string& topic, std::string_view payload,
                                 bool isRetained) {
  int message = 0;
  const int result =
      library().publish(m_client.get(), &message, topic.c_str(), static_cast<int>(payload.size()),
                        payload.data(), serviceQuality, isRetained);
  if (result == MOSQ_ERR_SUCCESS) {
    return {message, ""};
  }
  return {std::nullopt, isForGood(result) ? problemOf(result) : std::string()};
}

/// The library's own thread would give up for good where a name cannot be resolved for a moment.
void MqttClient::work() {
  int result =
      library().connectAsync(m_client.get(), m_address.host.c_str(), m_address.port, keepAlive);
  while (!m_isEnding) {
    if (result == MOSQ_ERR_SUCCESS) {
      result = library().loop(m_client.get(), longestLoop, 1);
    }
    if (result != MOSQ_ERR_SUCCESS && !m_isEnding) {
      m_isConnected = false;
      tellLoss(problemOf(result));
      pause();
      result = m_isEnding ? result : library().reconnectAsync(m_client.get());
    }
  }
  end();
}

void MqttClient::pause() {
  std::unique_lock lock(m_mutex);
  m_ending.wait_for(lock, m_pause, [this] { return m_isEnding.load(); });
  m_pause = std::min(2 * m_pause, longestPause);
}

/// Lets the last words leave.
void MqttClient::end() {
  for (int i = 0; i < farewells && m_isConnected; ++i) {
    if (library().loop(m_client.get(), farewellLoop, 1) != MOSQ_ERR_SUCCESS) {
      return;
    }
  }
}

void MqttClient::tellLoss(const std::string& problem) {
  if (m_events.onLost) {
    m_events.onLost(problem);
  }
}

}  // namespace grouptracker
