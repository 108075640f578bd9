#include "host/run/EventDetector.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <tuple>
#include <utility>

namespace grouptracker {

namespace {

using Persons = std::vector<std::uint32_t>;  // ascending, each once

Persons common(const Persons& a, const Persons& b) {
  Persons both;
  std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
  return both;
}

Persons without(const Persons& all, const Persons& some) {
  Persons rest;
  std::set_difference(all.begin(), all.end(), some.begin(), some.end(), std::back_inserter(rest));
  return rest;
}

Persons personsOf(const RunGroup& group) {
  Persons persons;
  persons.reserve(group.members.size());
  for (const RunMember& member : group.members) {
    if (member.person) {
      persons.push_back(*member.person);
    }
  }
  std::sort(persons.begin(), persons.end());
  persons.erase(std::unique(persons.begin(), persons.end()), persons.end());
  return persons;
}

}  // namespace

std::vector<TrackedEvent> EventDetector::next(const RunStep& step) {
  m_stamp.reportedFrame = step.reportedFrame;
  m_stamp.inputFrame = step.inputFrame;
  m_stamp.frame = step.frame;
  m_events.clear();
  m_cameAlong.clear();
  m_absorbed.clear();
  recallReturning(step);
  KnownGroups now = listed(step);
  findOrigins(step, now);
  findMerges(now);
  for (const auto& [id, group] : now) {
    compare(id, group);
  }
  m_known = std::move(now);
  std::stable_sort(m_events.begin(), m_events.end(),
                   [](const TrackedEvent& a, const TrackedEvent& b) {
                     return std::tie(a.kind, a.group) < std::tie(b.kind, b.group);
                   });
  return std::exchange(m_events, {});
}

/// A group of the evidence that was listed before, but not at the last frame, has ended for the
/// time being; its members join anew.
void EventDetector::recallReturning(const RunStep& step) {
  for (const RunGroup& group : step.groups) {
    if (step.source == GroupSource::evidence && group.since != step.inputFrame) {
      m_known.try_emplace(group.id);
    }
  }
}

EventDetector::KnownGroups EventDetector::listed(const RunStep& step) const {
  KnownGroups now;
  for (const RunGroup& state : step.groups) {
    const auto before = m_known.find(state.id);
    // A group that is not visible tells neither merge nor split; the last told values still hold.
    Known& group = now[state.id];
    group.isOpen = state.isVisible;
    group.source = step.source;
    group.members = state.isVisible ? personsOf(state) : Persons();
    group.merge = state.merge.value_or(before == m_known.end() ? untold : before->second.merge);
    group.split = state.split.value_or(before == m_known.end() ? untold : before->second.split);
  }
  return now;
}

void EventDetector::findOrigins(const RunStep& step, const KnownGroups& now) {
  for (const RunGroup& group : step.groups) {
    for (const std::uint32_t origin : group.from) {
      if (origin != group.id && now.contains(origin)) {
        add(EventKind::split, group.id, {}, origin);
      } else if (origin != group.id) {
        addMerge(group.id, origin, now);
      }
    }
  }
}

void EventDetector::findMerges(const KnownGroups& now) {
  for (const auto& [id, group] : now) {
    const auto before = m_known.find(id);
    const std::int64_t told = before == m_known.end() ? untold : before->second.merge;
    if (group.merge >= 0 && group.merge != told) {
      addMerge(id, static_cast<std::uint32_t>(group.merge), now);
    }
  }
  for (const auto& [id, group] : m_known) {
    if (!now.contains(id) && !m_absorbed.contains(id)) {
      addGone(id, group, now);
    }
  }
}

void EventDetector::addGone(std::uint32_t id, const Known& group, const KnownGroups& now) {
  if (group.source == GroupSource::evidence) {
    add(EventKind::ended, id);
  } else if (const auto heir = heirOf(group.members, now)) {
    addMerge(*heir, id, now);
  } else {
    add(EventKind::removed, id);
  }
}

void EventDetector::addMerge(std::uint32_t into, std::uint32_t from, const KnownGroups& now) {
  const auto absorbed = m_known.find(from);
  Persons came;
  if (absorbed != m_known.end()) {
    came = without(
        without(common(absorbed->second.members, now.at(into).members), membersBefore(into)),
        cameAlong(into));
  }
  Persons& along = m_cameAlong[into];
  const auto middle = static_cast<std::ptrdiff_t>(along.size());
  along.insert(along.end(), came.begin(), came.end());
  std::inplace_merge(along.begin(), along.begin() + middle, along.end());
  m_absorbed.insert(from);
  add(EventKind::merged, into, came, from);
}

// The group to which most members changed at this very frame, the lowest id of equals.
std::optional<std::uint32_t> EventDetector::heirOf(const Persons& members,
                                                   const KnownGroups& now) const {
  std::optional<std::uint32_t> heir;
  std::size_t most = 0;
  for (const auto& [id, group] : now) {
    const std::size_t changed = without(common(members, group.members), membersBefore(id)).size();
    if (changed > most) {
      most = changed;
      heir = id;
    }
  }
  return heir;
}

/// Whom this frame's merges brought into a group.
EventDetector::Persons EventDetector::cameAlong(std::uint32_t group) const {
  const auto found = m_cameAlong.find(group);
  return found == m_cameAlong.end() ? Persons() : found->second;
}

EventDetector::Persons EventDetector::membersBefore(std::uint32_t group) const {
  const auto found = m_known.find(group);
  return found == m_known.end() ? Persons() : found->second.members;
}

void EventDetector::compare(std::uint32_t id, const Known& now) {
  static const Known unknown;
  const auto found = m_known.find(id);
  const Known& before = found == m_known.end() ? unknown : found->second;
  const Persons came = cameAlong(id);
  if (found == m_known.end()) {
    add(EventKind::created, id, without(now.members, came));
  }
  if (now.split >= 0 && now.split != before.split) {
    add(EventKind::split, id, {}, static_cast<std::uint32_t>(now.split));
  }
  if (before.isOpen && !now.isOpen) {
    add(EventKind::ended, id);
  } else if (found != m_known.end() && now.members != before.members) {
    for (const std::uint32_t person : without(without(now.members, before.members), came)) {
      add(EventKind::joined, id, {person});
    }
    for (const std::uint32_t person : without(before.members, now.members)) {
      add(EventKind::left, id, {person});
    }
  }
}

void EventDetector::add(EventKind kind, std::uint32_t group, const Persons& persons,
                        std::optional<std::uint32_t> other) {
  TrackedEvent event = m_stamp;
  event.kind = kind;
  event.group = group;
  event.persons = persons;
  event.other = other;
  m_events.push_back(std::move(event));
}

}  // namespace grouptracker
