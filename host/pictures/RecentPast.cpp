#include "host/pictures/RecentPast.h"

#include <utility>

namespace grouptracker {

void RecentPast::add(const RunStep& step) {
  std::map<std::uint32_t, std::deque<TracePoint>> traces;
  for (const RunPerson& person : step.persons) {
    if (!person.seen) {
      continue;
    }
    std::deque<TracePoint> trace = std::move(m_traces[person.id]);
    const cv::Rect& box = person.seen->box2D;
    trace.push_back({person.seen->ground, {box.x + box.width / 2, box.y + box.height}});
    if (trace.size() > m_length) {
      trace.pop_front();
    }
    traces[person.id] = std::move(trace);
  }
  m_traces = std::move(traces);
  m_groups.clear();
  m_sizes.clear();
  m_colours.add(step);
  for (const RunGroup& group : step.groups) {
    for (const RunMember& member : group.members) {
      if (group.isVisible && member.person) {
        m_groups[*member.person] = group.id;
        ++m_sizes[group.id];
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

std::optional<std::uint32_t> RecentPast::companyOf(std::uint32_t person) const {
  const auto group = groupOf(person);
  return group && m_sizes.at(*group) > 1 ? group : std::nullopt;
}

std::vector<std::string> RecentPast::events() const {
  std::vector<std::string> texts;
  for (const Said& said : m_events) {
    texts.push_back(said.text);
  }
  return texts;
}

void RecentPast::addEvents(const RunStep& step) {
  constexpr std::size_t most = 4;  // lines in a picture
  for (Said& said : m_events) {
    ++said.age;
  }
  for (const TrackedEvent& event : step.events) {
    if (event.kind != EventKind::removed) {  // nothing is seen of it: the group ended long before
      m_events.push_back({describe(event), 0});
    }
  }
  while (m_events.size() > most || (!m_events.empty() && m_events.front().age >= m_length)) {
    m_events.pop_front();
  }
}

}  // namespace grouptracker
