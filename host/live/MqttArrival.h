#pragma once

#include "host/base/FileDescriptor.h"
#include "host/base/Log.h"
#include "host/live/ArrivingText.h"
#include "host/live/MqttClient.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <streambuf>
#include <string>
#include <string_view>

namespace grouptracker {

/// The messages of a broker's topic as text: each is a line, or several where it holds several,
/// unless it is one JSON object. Messages above the limit of their length are passed over; of those
/// that come faster than they are tracked the oldest are dropped. Both is said once in a while. A
/// topic has no end.
class MqttArrival : public ByteArrival {
 public:
  using Warning = std::function<void(const std::string&)>;

  struct Counts {
    std::uint64_t tooLong = 0;       ///< messages passed over
    std::uint64_t dropped = 0;       ///< messages that came faster than they are tracked
    std::uint64_t waitingBytes = 0;  ///< now, to be read
  };
  using Watch = std::function<void(const Counts&)>;

  /// Warnings are said by whoever reads, on its thread. `watch` hears of the counts whenever they
  /// change, on any thread; it may be empty.
  MqttArrival(const MqttAddress& address, const BrokerAccess& access, Warning onWarning,
              Watch watch = {});

  std::streambuf& bytes() override { return m_buffer; }
  bool waitFor(std::chrono::milliseconds most) override;
  std::string name() const override { return m_address.text(); }

 private:
  /// Hands out message by message.
  class Buffer : public std::streambuf {
   public:
    explicit Buffer(MqttArrival& arrival) : m_arrival(arrival) {}

   protected:
    int_type underflow() override;

   private:
    MqttArrival& m_arrival;
    std::string m_text;
  };

  void add(std::string_view payload);
  void lose(const std::string& problem, OnceInAWhile& telling);
  std::string take();
  void count() const;
  void calm() const;
  void warn();
  void warnInTheEnd();
  bool await(int milliseconds);

  MqttAddress m_address;
  Warning m_onWarning;
  Watch m_watch;
  FileDescriptor m_ring;  ///< can be read while anything waits
  Buffer m_buffer;
  std::mutex m_mutex;  ///< guards all that follows
  std::deque<std::string> m_waiting;
  Counts m_counts;
  std::uint64_t m_told = 0;  ///< messages passed over or dropped
  std::string m_loss;        ///< why nothing arrives; empty when it was told
  OnceInAWhile m_telling;
  OnceInAWhile m_tellingLoss;
  OnceInAWhile m_tellingDenial;
  MqttClient m_client;  ///< last, so that its thread ends first
};

}  // namespace grouptracker
