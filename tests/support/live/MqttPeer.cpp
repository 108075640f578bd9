#include "tests/support/live/MqttPeer.h"

#include <chrono>
#include <mosquitto.h>
#include <stdexcept>
#include <thread>

namespace grouptracker {

namespace {

constexpr int qualityOfService = 1;
constexpr int keepAliveSeconds = 60;

}  // namespace

struct MqttPeer::Callbacks {
  static void connected(mosquitto* client, void* object, int refusal) {
    if (refusal == 0) {
      const std::string topic = static_cast<MqttPeer*>(object)->m_topic + "/#";
      mosquitto_subscribe(client, nullptr, topic.c_str(), qualityOfService);
    }
  }
  static void subscribed(mosquitto* /*client*/, void* object, int /*message*/, int /*count*/,
                         const int* /*granted*/) {
    auto& peer = *static_cast<MqttPeer*>(object);
    const std::lock_guard lock(peer.m_mutex);
    peer.m_isSubscribed = true;
  }
  static void message(mosquitto* /*client*/, void* object, const mosquitto_message* message) {
    auto& peer = *static_cast<MqttPeer*>(object);
    const std::lock_guard lock(peer.m_mutex);
    peer.m_messages.push_back({message->topic,
                               {static_cast<const char*>(message->payload),
                                static_cast<std::size_t>(message->payloadlen)},
                               Clock::now()});
  }
};

void MqttPeer::Destroy::operator()(mosquitto* client) const {
  mosquitto_destroy(client);
}

MqttPeer::MqttPeer(int port, const std::string& name, const std::string& topic) : m_topic(topic) {
  mosquitto_lib_init();
  m_client.reset(mosquitto_new(name.c_str(), false, this));
  mosquitto_connect_callback_set(m_client.get(), Callbacks::connected);
  mosquitto_subscribe_callback_set(m_client.get(), Callbacks::subscribed);
  mosquitto_message_callback_set(m_client.get(), Callbacks::message);
  mosquitto_reconnect_delay_set(m_client.get(), 1, 1, false);
  // What it sends would wait until what it has acknowledged before is acknowledged itself.
  mosquitto_int_option(m_client.get(), MOSQ_OPT_TCP_NODELAY, 1);
  mosquitto_connect(m_client.get(), "127.0.0.1", port, keepAliveSeconds);
  mosquitto_loop_start(m_client.get());
  if (!until([this] { return m_isSubscribed; })) {
    throw std::runtime_error("the peer cannot subscribe");
  }
}

MqttPeer::~MqttPeer() {
  mosquitto_disconnect(m_client.get());
  mosquitto_loop_stop(m_client.get(), true);
}

void MqttPeer::send(const std::string& topic, const std::string& payload) {
  mosquitto_publish(m_client.get(), nullptr, topic.c_str(), static_cast<int>(payload.size()),
                    payload.data(), qualityOfService, false);
}

std::vector<MqttPeer::Message> MqttPeer::messages() const {
  const std::lock_guard lock(m_mutex);
  return m_messages;
}

std::vector<std::string> MqttPeer::messages(const std::string& topic) const {
  std::vector<std::string> payloads;
  for (const Message& message : messages()) {
    if (message.topic == topic) {
      payloads.push_back(message.payload);
    }
  }
  return payloads;
}

bool MqttPeer::await(const std::string& topic, std::size_t count) const {
  return until([&] {
    std::size_t found = 0;
    for (const auto& message : m_messages) {
      found += message.topic == topic ? 1 : 0;
    }
    return found >= count;
  });
}

bool MqttPeer::until(const std::function<bool()>& condition) const {
  constexpr auto pause = std::chrono::milliseconds(5);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (std::chrono::steady_clock::now() < end) {
    {
      const std::lock_guard lock(m_mutex);
      if (condition()) {
        return true;
      }
    }
    std::this_thread::sleep_for(pause);
  }
  return false;
}

}  // namespace grouptracker
