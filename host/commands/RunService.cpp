#include "host/commands/RunService.h"

#include "host/commands/RunOptions.h"
#include "host/publish/PublishSink.h"

#include <fmt/format.h>

#include <chrono>
#include <cmath>

namespace grouptracker {

void RunService::watch(MessageChoice& messages) {
  messages.watch = [this](const ReorderBuffer::Counts& counts) {
    m_metrics.set(Metric::messages, counts.messages);
    m_metrics.set(Metric::lateMessages, counts.late);
    m_metrics.set(Metric::repeatedMessages, counts.duplicates);
    m_metrics.set(Metric::missingFrames, counts.missing);
    m_metrics.set(Metric::senderRestarts, counts.restarts);
    m_metrics.set(Metric::waitingMessages, counts.waiting);
  };
  messages.watchArrival = [this](const MqttArrival::Counts& counts) {
    m_metrics.set(Metric::longMessages, counts.tooLong);
    m_metrics.set(Metric::overrunMessages, counts.dropped);
    m_metrics.set(Metric::queueBytes, counts.waitingBytes);
  };
}

void RunService::open(const LiveOptions& options, const Say& say) {
  PublishOptions publishing = options.publishing();
  if (!publishing.address.empty()) {
    publishing.onWarning = [say, address = publishing.address](const std::string& warning) {
      say(program_log::Level::warning, fmt::format("{}: warning: {}", address, warning));
    };
    m_publisher = std::make_unique<Publisher>(publishing);
  }
  if (!options.metricsAddress.empty()) {
    m_server =
        std::make_unique<MetricsServer>(options.metricsAddress, [this] { return metricsText(); });
    say(program_log::Level::info, fmt::format("metrics are served at port {}", m_server->port()));
  }
}

StepSinks RunService::sinks() {
  StepSinks sinks;
  if (m_publisher) {
    sinks.push_back(std::make_unique<PublishSink>(*m_publisher));
  }
  return sinks;
}

void RunService::measure(const InputFrame& frame, std::uint64_t frames, std::uint64_t events) {
  m_metrics.set(Metric::frames, frames);
  m_metrics.set(Metric::people, std::uint64_t(frame.actors.size()));
  m_metrics.set(Metric::events, events);
  const std::chrono::duration<double> now = std::chrono::system_clock::now().time_since_epoch();
  const double lateness = now.count() - frame.time.value_or(0.0);
  // Times out of --rate, or since the beginning of a recording, tell nothing.
  constexpr double day = 86400.0;  // seconds
  m_metrics.set(Metric::lateness, std::abs(lateness) < day ? lateness : std::nan(""));
}

/// On the server's thread.
std::string RunService::metricsText() {
  if (m_publisher) {
    const Publisher::Counts counts = m_publisher->counts();
    m_metrics.set(Metric::published, counts.published);
    m_metrics.set(Metric::brokerConnected, counts.isConnected ? 1.0 : 0.0);
    m_metrics.set(Metric::spoolMessages, counts.waiting);
    m_metrics.set(Metric::spoolBytes, counts.waitingBytes);
    m_metrics.set(Metric::spoolDropped, counts.dropped);
  }
  return m_metrics.text();
}

}  // namespace grouptracker
