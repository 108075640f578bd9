#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace grouptracker {

/// What can be watched of a run; `RunMetrics.cpp` has the name and the meaning of each.
enum class Metric : std::uint8_t {
  frames,
  people,
  groups,
  events,
  lateness,
  messages,
  waitingMessages,
  lateMessages,
  repeatedMessages,
  missingFrames,
  senderRestarts,
  damagedMessages,
  longMessages,
  overrunMessages,
  queueBytes,
  published,
  brokerConnected,
  spoolMessages,
  spoolBytes,
  spoolDropped,
};

inline constexpr std::size_t metrics = static_cast<std::size_t>(Metric::spoolDropped) + 1;

/// The numbers of a run for those who watch it; any thread may set and read them.
class RunMetrics {
 public:
  RunMetrics();

  void set(Metric metric, double value) { at(metric) = value; }
  void set(Metric metric, std::uint64_t value) { at(metric) = static_cast<double>(value); }

  /// All of them in the text format of Prometheus; those that are no number, since nobody knows
  /// them, are left out.
  std::string text() const;

 private:
  std::atomic<double>& at(Metric metric) { return m_values.at(static_cast<std::size_t>(metric)); }

  std::array<std::atomic<double>, metrics> m_values{};
};

}  // namespace grouptracker
