#pragma once

#include "host/base/FileDescriptor.h"
#include "host/live/ArrivingText.h"
#include "host/live/MqttClient.h"
#include "host/live/OnceInAWhile.h"

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

  /// Warnings are said by whoever reads, on its thread.
  MqttArrival(const MqttAddress& address, const BrokerAccess& access, Warning onWarning);

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
  void lose(const std::string& problem);
  std::string take();
  void calm() const;
  void warn();
  bool await(int milliseconds) const;

  MqttAddress m_address;
  Warning m_onWarning;
  FileDescriptor m_ring;  ///< can be read while anything waits
  Buffer m_buffer;
  std::mutex m_mutex;  ///< guards all that follows
  std::deque<std::string> m_waiting;
  std::size_t m_waitingBytes = 0;
  std::uint64_t m_tooLong = 0;
  std::uint64_t m_dropped = 0;
  std::uint64_t m_told = 0;  ///< of both
  std::string m_loss;        ///< why the connection was lost; empty when it was told
  OnceInAWhile m_telling;
  OnceInAWhile m_tellingLoss;
  MqttClient m_client;  ///< last, so that its thread ends first
};

}  // namespace grouptracker
