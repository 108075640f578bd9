#include "host/publish/RunMetrics.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

namespace grouptracker {

namespace {

struct Description {
  const char* name;  ///< behind "grouptracker_"; what only grows ends with "_total"
  const char* help;
};

constexpr auto descriptions = std::to_array<Description>({
    {"frames_total", "frames tracked"},
    {"people", "people in view at the latest frame"},
    {"groups", "groups at the latest frame that is decided"},
    {"events_total", "what happened to groups"},
    {"lateness_seconds",
     "from the time that the latest frame tells until it was tracked; none when its clock is no "
     "clock of today"},
    {"messages_total", "people messages that arrived"},
    {"messages_waiting", "messages that wait for earlier ones"},
    {"messages_late_total", "messages dropped because they came too late"},
    {"messages_repeated_total", "messages dropped because they came again"},
    {"frames_missing_total", "frames without people in place of messages that never came"},
    {"sender_restarts_total", "new beginnings of the sender, or of its clock"},
    {"messages_damaged_total", "messages passed over because they could not be read"},
    {"messages_too_long_total", "messages of a topic passed over because of their length"},
    {"messages_overrun_total", "messages dropped because they came faster than they are tracked"},
    {"queue_bytes", "bytes of messages of a topic that wait to be read"},
    {"published_total", "messages that the broker has"},
    {"broker_connected", "1 while the broker that is published to is there"},
    {"spool_messages", "messages that wait for the broker"},
    {"spool_bytes", "bytes of these"},
    {"spool_dropped_total", "messages dropped because the spool was full or they cannot be sent"},
});
static_assert(descriptions.size() == metrics, "each has a name and a meaning");

}  // namespace

RunMetrics::RunMetrics() {
  set(Metric::lateness, std::nan(""));
}

std::string RunMetrics::text() const {
  std::string text;
  for (std::size_t i = 0; i < metrics; ++i) {
    const auto& [name, help] = descriptions.at(i);
    const double value = m_values.at(i);
    if (std::isnan(value)) {
      continue;
    }
    const bool grows = std::string(name).ends_with("_total");
    text += fmt::format(
        "# HELP grouptracker_{0} {1}\n# TYPE grouptracker_{0} {2}\n"
        "grouptracker_{0} {3}\n",
        name, help, grows ? "counter" : "gauge", value);
  }
  return text;
}

}  // namespace grouptracker
