#include "host/grouping/GroupFinder.h"

#include "host/grouping/PeopleFrame.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace grouptracker {

namespace {

/// Where those of some persons stand among the people who are there; both in ascending order.
std::vector<std::size_t> indicesOf(const std::vector<PersonId>& persons,
                                   const std::vector<PersonAt>& people) {
  std::vector<std::size_t> indices;
  indices.reserve(persons.size());
  auto at = people.begin();
  for (const PersonId person : persons) {
    at = std::lower_bound(at, people.end(), person,
                          [](const PersonAt& other, PersonId id) { return other.person < id; });
    if (at != people.end() && at->person == person) {
      indices.push_back(static_cast<std::size_t>(at - people.begin()));
    }
  }
  return indices;
}

cv::Point2d meanPlace(const std::vector<std::size_t>& members,
                      const std::vector<PersonAt>& people) {
  cv::Point2d sum;
  for (const std::size_t member : members) {
    sum += people[member].place;
  }
  const auto count = static_cast<double>(members.size());
  return {sum.x / count, sum.y / count};
}

std::vector<GroupId> common(const std::vector<GroupId>& a, const std::vector<GroupId>& b) {
  std::vector<GroupId> both;
  std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
  return both;
}

}  // namespace

std::vector<FrameGroups> GroupFinder::next(const PeopleFrame& frame) {
  const double now = clock(frame);
  std::optional<double> tick;
  // Ticks whose look-ahead ended before this frame must not see it.
  std::vector<FrameGroups> decided = handOut(now - 2 * ticks::tolerance);
  if (!m_lastTick || now - *m_lastTick >= ticks::interval - ticks::tolerance) {
    m_lastTick = tick = now;
    m_evidence.add(now, frame.people);
  }
  m_waiting.push_back({frame, tick});
  std::vector<FrameGroups> more = handOut(now + ticks::tolerance);
  std::move(more.begin(), more.end(), std::back_inserter(decided));
  return decided;
}

std::vector<FrameGroups> GroupFinder::finish() {
  return handOut(std::numeric_limits<double>::infinity());
}

/// The seconds of a frame by a clock that always goes on: were it to stand still, no frame would
/// ever be decided. Where that of the input is set back, ours goes on from where it was.
double GroupFinder::clock(const PeopleFrame& frame) {
  const double usual = m_now ? *m_now + ticks::usualLength : 0.0;
  double now = frame.time ? *frame.time + m_setBack : usual;
  if (m_now && now - *m_now < ticks::tolerance) {
    m_setBack += *m_now + m_distance - now;
    now = *m_now + m_distance;
  } else if (m_now) {
    m_distance = std::min(now - *m_now, ticks::usualLength);
  }
  m_now = now;
  return now;
}

std::vector<FrameGroups> GroupFinder::handOut(double knownUntil) {
  std::vector<FrameGroups> decided;
  while (!m_waiting.empty()) {
    const WaitingFrame& oldest = m_waiting.front();
    if (oldest.tick && *oldest.tick + m_lookAhead > knownUntil) {
      break;
    }
    if (oldest.tick) {
      const TickBeliefs beliefs = m_evidence.decide();
      if (m_watcher) {
        m_watcher(oldest.frame, beliefs);
      }
      m_groups = m_identity.next(
          beliefs, [this](PersonId a, PersonId b) { return m_evidence.latestOf(a, b); });
      std::erase_if(m_since,
                    [this](const auto& group) { return !m_identity.remembers(group.first); });
    }
    decided.push_back(describe(oldest));
    m_waiting.pop_front();
  }
  return decided;
}

FrameGroups GroupFinder::describe(const WaitingFrame& waiting) {
  const PeopleFrame& frame = waiting.frame;
  FrameGroups line{frame.number, frame.time, {}, {}};
  line.groups.reserve(m_groups.size());
  std::vector<bool> isTogether(frame.people.size(), false);
  for (const TickGroup& group : m_groups) {
    const std::vector<std::size_t> inView = indicesOf(group.members, frame.people);
    if (inView.size() < 2) {
      continue;
    }
    for (const std::size_t person : inView) {
      isTogether[person] = true;
    }
    line.groups.push_back(describe(group, inView, waiting));
  }
  for (std::size_t person = 0; person < frame.people.size(); ++person) {
    if (!isTogether[person]) {
      line.alone.push_back(frame.people[person].person);
    }
  }
  m_listed.clear();
  for (const FoundGroup& group : line.groups) {
    m_listed.push_back(group.id);
  }
  return line;
}

FoundGroup GroupFinder::describe(const TickGroup& group, const std::vector<std::size_t>& members,
                                 const WaitingFrame& waiting) {
  FoundGroup found;
  found.id = group.id;
  found.position = meanPlace(members, waiting.frame.people);
  found.members.reserve(members.size());
  for (const std::size_t member : members) {
    found.members.push_back(waiting.frame.people[member].person);
  }
  found.since = m_since.try_emplace(group.id, waiting.frame.number).first->second;
  found.confidence = group.confidence;
  found.from = waiting.tick ? listedOrigin(group) : std::vector<GroupId>();
  return found;
}

/// A group that was not listed in the line before, as too few of it were in view, cannot be named.
std::vector<GroupId> GroupFinder::listedOrigin(const TickGroup& group) const {
  std::vector<GroupId> listed = common(group.from, m_listed);
  return listed == std::vector<GroupId>{group.id} ? std::vector<GroupId>() : listed;
}

}  // namespace grouptracker
