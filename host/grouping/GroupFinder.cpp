#include "host/grouping/GroupFinder.h"

#include "host/grouping/PeopleFrame.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace grouptracker {

namespace {

std::vector<PersonId> idsOf(const std::vector<PersonAt>& people) {
  std::vector<PersonId> ids;
  ids.reserve(people.size());
  for (const PersonAt& person : people) {
    ids.push_back(person.person);
  }
  return ids;
}

/// Of some of the people, both in ascending order.
cv::Point2d meanPlace(const std::vector<PersonId>& members, const std::vector<PersonAt>& people) {
  cv::Point2d sum;
  auto person = people.begin();
  for (const PersonId member : members) {
    person = std::lower_bound(person, people.end(), member,
                              [](const PersonAt& at, PersonId id) { return at.person < id; });
    sum += person->place;
  }
  const auto count = static_cast<double>(members.size());
  return {sum.x / count, sum.y / count};
}

std::vector<PersonId> common(const std::vector<PersonId>& a, const std::vector<PersonId>& b) {
  std::vector<PersonId> both;
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
  const std::vector<PersonId> inView = idsOf(frame.people);
  std::vector<PersonId> together;
  for (const TickGroup& group : m_groups) {
    std::vector<PersonId> members = common(group.members, inView);
    if (members.size() >= 2) {
      together.insert(together.end(), members.begin(), members.end());
      line.groups.push_back(describe(group, std::move(members), frame, waiting.tick.has_value()));
    }
  }
  std::sort(together.begin(), together.end());
  std::set_difference(inView.begin(), inView.end(), together.begin(), together.end(),
                      std::back_inserter(line.alone));
  m_listed.clear();
  for (const FoundGroup& group : line.groups) {
    m_listed.push_back(group.id);
  }
  return line;
}

FoundGroup GroupFinder::describe(const TickGroup& group, std::vector<PersonId> members,
                                 const PeopleFrame& frame, bool isTick) {
  FoundGroup found;
  found.id = group.id;
  found.position = meanPlace(members, frame.people);
  found.members = std::move(members);
  found.since = m_since.try_emplace(group.id, frame.number).first->second;
  found.confidence = group.confidence;
  found.from = isTick ? listedOrigin(group) : std::vector<GroupId>();
  return found;
}

/// A group that was not listed in the line before, as too few of it were in view, cannot be named.
std::vector<GroupId> GroupFinder::listedOrigin(const TickGroup& group) const {
  std::vector<GroupId> listed = common(group.from, m_listed);
  return listed == std::vector<GroupId>{group.id} ? std::vector<GroupId>() : listed;
}

}  // namespace grouptracker
