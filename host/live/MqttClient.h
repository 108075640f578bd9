#pragma once

#include "host/live/MqttAddress.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

struct mosquitto;

namespace grouptracker {

/// What a client hears of, on a thread of its own. Each may be empty; none may throw.
struct MqttEvents {
  std::function<void()> onConnected;
  std::function<void(std::string_view payload)> onMessage;
  /// The broker has a message for good.
  std::function<void(int message)> onAccepted;
  /// The connection is lost, or cannot be made, and why; the client goes on trying.
  std::function<void(const std::string& problem)> onLost;
  /// The broker does not let the client have the messages that it has asked for.
  std::function<void()> onDenied;
};

/// What came of handing over a message.
struct MqttHandover {
  std::optional<int> message;  ///< by which `onAccepted` tells of it; none when it was not taken
  std::string refusal;         ///< why it never will be; empty when another time it may be
};

/// A message that others see when the client has gone without saying so.
struct MqttWill {
  std::string topic;
  std::string payload;
};

/// A connection to an MQTT broker that is made anew whenever it is lost, with pauses that grow to
/// some seconds. Nobody who calls it waits for the network. Everything has quality of service 1: it
/// arrives at least once while the broker lives. Every connection has the same name, so that the
/// broker ends one that is half lost, and tells its will, before it begins the next.
class MqttClient {
 public:
  /// What is wrong with the files of the access is an `InputError`.
  MqttClient(const MqttAddress& address, const BrokerAccess& access, MqttEvents events,
             const std::optional<MqttWill>& will = std::nullopt);
  /// Ends the connection without a will.
  ~MqttClient();
  MqttClient(const MqttClient&) = delete;
  MqttClient& operator=(const MqttClient&) = delete;

  /// Begins to connect; from now on there are events.
  void start();
  bool isConnected() const { return m_isConnected; }
  /// Asks for the messages of the address's topic, now and after every new connection.
  void subscribe();
  /// Hands a message over.
  MqttHandover publish(const std::string& topic, std::string_view payload, bool isRetained);

  static constexpr int mostInFlight = 64;  ///< messages that wait for the broker's answer at once

 private:
  struct Callbacks;
  struct Destroy {
    void operator()(mosquitto* client) const;
  };

  void secure(const BrokerAccess& access);
  void work();
  void pause();
  void end();
  void tellLoss(const std::string& problem);

  MqttAddress m_address;
  MqttEvents m_events;
  std::unique_ptr<mosquitto, Destroy> m_client;
  std::atomic<bool> m_isConnected = false;
  std::atomic<bool> m_isSubscribed = false;
  std::atomic<bool> m_isEnding = false;
  std::chrono::milliseconds m_pause;  ///< before the next attempt
  std::mutex m_mutex;
  std::condition_variable m_ending;
  std::thread m_thread;
};

}  // namespace grouptracker
