#include "host/publish/PublishSink.h"

#include "host/base/JsonLine.h"
#include "host/grouping/FrameGroupsWriter.h"
#include "host/run/GroupRun.h"

#include <fmt/format.h>

#include <utility>
#include <vector>

namespace grouptracker {

namespace {

std::string withoutEnd(std::string line) {
  if (line.ends_with('\n')) {
    line.pop_back();
  }
  return line;
}

/// An event with the time of its frame.
std::string objectOf(const TrackedEvent& event, const std::optional<double>& time) {
  const std::string text = withoutEnd(toJsonLine(event));
  const std::string seconds = time ? jsonNumber(*time) : std::string("null");
  return fmt::format("{{\"time\": {}, {}", seconds, text.substr(1));
}

}  // namespace

void PublishSink::write(const RunStep& step) {
  m_line = withoutEnd(toLine(toFrameGroups(step)));
  std::vector<Outgoing> messages{{Channel::groups, m_line}};
  for (const TrackedEvent& event : step.events) {
    messages.push_back({Channel::events, objectOf(event, step.time)});
  }
  m_publisher.publish(messages);
  constexpr std::chrono::seconds freshness(1);
  const auto now = Clock::now();
  if (!m_shown || !step.events.empty() || now - *m_shown >= freshness) {
    m_publisher.show(m_line);
    m_shown = now;
  }
}

void PublishSink::finish() {
  if (!m_line.empty()) {
    m_publisher.show(m_line);
  }
  m_publisher.finish();
}

}  // namespace grouptracker
