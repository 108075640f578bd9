#pragma once

#include "host/base/Log.h"
#include "host/live/MqttClient.h"
#include "host/publish/Spool.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Where and how a run is published.
struct PublishOptions {
  std::string address;  ///< mqtt://...; nothing is published when empty
  BrokerAccess access;
  std::string spoolFile;  ///< in memory, and lost with the program, when empty
  std::size_t spoolBytes = std::size_t{256} * 1024 * 1024;
  std::function<void(const std::string&)> onWarning = [](const std::string&) {};
};

/// Publishes messages under a topic of a broker, from a thread of its own: who hands them over
/// never waits for the network. While the broker is away they are kept, see `Spool`, and follow in
/// order. What may arrive twice, since nobody can know whether a broker that is gone had it, shows
/// by its counter.
///
///     TOPIC         lines of groups
///     TOPIC/events  what happened to them
///     TOPIC/now     the latest line of groups, retained
///     TOPIC/status  "online" or "offline", retained, "offline" also by last will
class Publisher {
 public:
  struct Counts {
    std::uint64_t published = 0;  ///< messages that the broker has
    std::uint64_t waiting = 0;
    std::uint64_t waitingBytes = 0;
    std::uint64_t dropped = 0;  ///< of a spool that was full, and those that cannot be sent
    bool isConnected = false;
  };

  /// Connects beside the caller.
  explicit Publisher(const PublishOptions& options);
  ~Publisher();
  Publisher(const Publisher&) = delete;
  Publisher& operator=(const Publisher&) = delete;

  /// What cannot be spooled is an `OutputError`, maybe a later one.
  void publish(const std::vector<Outgoing>& messages);
  /// Replaces what holds now.
  void show(const std::string& now);
  /// Waits until the broker has everything, but not long, and not for one that is away.
  void finish();

  Counts counts() const;

 private:
  void connected();
  void accepted(int message);
  void lose(const std::string& problem);
  void settle();
  void pump();
  void drop(std::int64_t id, const std::string& refusal);
  std::string dropWarning();
  void warn();
  void greet();
  void showNow();
  template <typename Action>
  void guarded(const Action& action);
  void keepFailure();
  void rethrow();

  PublishOptions m_options;
  MqttAddress m_address;
  mutable std::mutex m_mutex;  ///< guards all that follows but the client
  std::condition_variable m_changed;
  Spool m_spool;
  std::map<int, std::int64_t> m_inFlight;  ///< message of the client to id in the spool
  std::int64_t m_lastSent = 0;             ///< id in the spool
  /// The client repeats what was in flight when the connection was lost; nothing may overtake it.
  bool m_isRepeating = false;
  bool m_isAway = false;          ///< as far as is known: not before the first attempt has failed
  std::optional<int> m_greeting;  ///< "online", until the broker has it
  std::optional<int> m_farewell;  ///< the last message, until the broker has it
  std::optional<int> m_shown;     ///< one of what holds now, until the broker has it
  std::string m_now;              ///< what is to be shown; empty before the first
  bool m_isNew = false;           ///< and it was not handed over yet
  std::uint64_t m_published = 0;
  std::uint64_t m_refused = 0;  ///< messages that cannot be sent, and are dropped
  std::string m_refusal;        ///< why not the latest of these
  std::uint64_t m_toldDrops = 0;
  std::string m_loss;  ///< why the connection was lost; empty when it was told
  OnceInAWhile m_tellingLoss;
  OnceInAWhile m_tellingDrops;
  std::exception_ptr m_failure;  ///< of the other thread
  MqttClient m_client;           ///< last, so that its thread ends first
};

}  // namespace grouptracker
