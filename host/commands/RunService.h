#pragma once

#include "host/base/Log.h"
#include "host/commands/StepOptions.h"
#include "host/input/OpenedInput.h"
#include "host/publish/MetricsServer.h"
#include "host/publish/Publisher.h"
#include "host/publish/RunMetrics.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace grouptracker {

struct LiveOptions;

/// What others meet of a run over the network: the groups that it publishes, and its numbers.
/// Nothing is there that the options do not name, but the numbers, which may be set all the same.
class RunService {
 public:
  using Say = std::function<void(program_log::Level, const std::string&)>;

  /// Lets the reader of messages count.
  void watch(MessageChoice& messages);
  /// `say` gets what the user is to know, on the thread that hands out the groups. What cannot be
  /// opened is an `OutputError`.
  void open(const LiveOptions& options, const Say& say);
  /// The way of the groups to the broker; none when nothing is published. They live shorter.
  StepSinks sinks();
  void set(Metric metric, std::uint64_t value) { m_metrics.set(metric, value); }
  /// The numbers after a frame; `frames` and `events` are all so far.
  void measure(const InputFrame& frame, std::uint64_t frames, std::uint64_t events);

 private:
  std::string metricsText();

  RunMetrics m_metrics;
  std::unique_ptr<Publisher> m_publisher;   ///< null when nothing is published
  std::unique_ptr<MetricsServer> m_server;  ///< last, as it looks at the others
};

}  // namespace grouptracker
