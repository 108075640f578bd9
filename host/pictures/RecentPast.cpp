#include "host/pictures/RecentPast.h"

#include <utility>

namespace grouptracker {

void RecentPast::add(const ReportedStep& step) {
  std::map<std::uint32_t, std::deque<TracePoint>> traces;
  for (const PersonPlace& place : step.people) {
    std::deque<TracePoint> trace = std::move(m_traces[place.person]);
    const cv::Rect& box = place.box2D;
    trace.push_back({place.position, {box.x + box.width / 2, box.y + box.height}});
    if (trace.size() > m_length) {
      trace.pop_front();
    }
    traces[place.person] = std::move(trace);
  }
  m_traces = std::move(traces);
  m_groups.clear();
  for (const GroupState& group : step.groups.groups) {
    for (const GroupMember& member : group.members) {
      if (group.isVisible && member.person) {
        m_groups[*member.person] = group.id;
      }
    }
  }
  addEvents(step);
}

const std::deque<TracePoint>& RecentPast::traceOf(std::uint32_t person) const {
  static const std::deque<TracePoint> nothing;
  const auto trace = m_traces.find(person);
  return trace == m_traces.end() ? nothing : trace->second;
}

std::optional<std::uint32_t> RecentPast::groupOf(std::uint32_t person) const {
  const auto group = m_groups.find(person);
  return group == m_groups.end() ? std::nullopt : std::optional(group->second);
}

std::vector<std::string> RecentPast::events() const {
  std::vector<std::string> texts;
  for (const Said& said : m_events) {
    texts.push_back(said.text);
  }
  return texts;
}

void RecentPast::addEvents(const ReportedStep& step) {
  constexpr std::size_t most = 6;  // lines in a picture
  for (Said& said : m_events) {
    ++said.age;
  }
  for (const TrackedEvent& event : step.events) {
    if (event.kind != EventKind::Removed) {  // nothing is seen of it: the group ended long before
      m_events.push_back({describe(event), 0});
    }
  }
  while (m_events.size() > most || (!m_events.empty() && m_events.front().age >= m_length)) {
    m_events.pop_front();
  }
}

}  // namespace grouptracker
