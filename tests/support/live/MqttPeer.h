#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

struct mosquitto;

namespace grouptracker {

/// Somebody else at a broker: sends messages and notes those of a topic and all below it. The
/// broker keeps what it misses while it is away.
class MqttPeer {
 public:
  using Clock = std::chrono::steady_clock;

  struct Message {
    std::string topic;
    std::string payload;
    Clock::time_point arrived;
  };

  /// Waits until it is connected and subscribed. Peers have different names.
  MqttPeer(int port, const std::string& name, const std::string& topic);
  ~MqttPeer();
  MqttPeer(const MqttPeer&) = delete;
  MqttPeer& operator=(const MqttPeer&) = delete;

  void send(const std::string& topic, const std::string& payload);
  /// All that came so far; with a topic the payloads of that one.
  std::vector<Message> messages() const;
  std::vector<std::string> messages(const std::string& topic) const;
  /// Waits until so many messages of a topic have come; false when they do not within half a
  /// minute.
  bool await(const std::string& topic, std::size_t count) const;

 private:
  struct Destroy {
    void operator()(mosquitto* client) const;
  };
  struct Callbacks;

  bool until(const std::function<bool()>& condition) const;

  std::string m_topic;
  mutable std::mutex m_mutex;
  bool m_isSubscribed = false;
  std::vector<Message> m_messages;
  std::unique_ptr<mosquitto, Destroy> m_client;
};

}  // namespace grouptracker
