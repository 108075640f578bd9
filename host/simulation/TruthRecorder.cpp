#include "host/simulation/TruthRecorder.h"

#include "host/base/JoinedSets.h"
#include "host/base/JsonLine.h"

#include <algorithm>
#include <array>
#include <functional>

namespace grouptracker {

namespace {

using json_line::append;
using json_line::appendArray;
using json_line::appendNumbers;
using Kind = GroupEvent::Kind;

const char* nameOf(Kind kind) {
  constexpr std::array<const char*, 8> names{"created", "joined", "left",     "merged",
                                             "split",   "ended",  "switched", "renamed"};
  return names[static_cast<std::size_t>(kind)];
}

/// The persons in view by group, without those who are alone in view.
std::map<int, std::vector<std::uint32_t>> groupsOf(const std::vector<Walker>& inView) {
  std::map<int, std::vector<std::uint32_t>> groups;
  for (const Walker& walker : inView) {
    if (walker.group != GroupEvent::none) {
      groups[walker.group].push_back(walker.id);
    }
  }
  std::erase_if(groups, [](const auto& group) { return group.second.size() < 2; });
  return groups;
}

std::vector<std::uint32_t> idsOf(const std::vector<Walker>& walkers) {
  std::vector<std::uint32_t> ids;
  ids.reserve(walkers.size());
  for (const Walker& walker : walkers) {
    ids.push_back(walker.id);
  }
  return ids;
}

/// The groups of the frame before out of which a group came at this one, as a run tells them.
std::vector<GroupId> originOf(int group, const std::vector<GroupEvent>& events) {
  std::vector<GroupId> origin;
  for (const GroupEvent& event : events) {
    if (event.group == group && event.other != GroupEvent::none) {
      origin.push_back(static_cast<GroupId>(event.other));
      if (event.kind == Kind::merged) {
        origin.push_back(static_cast<GroupId>(group));
      }
    }
  }
  std::sort(origin.begin(), origin.end());
  origin.erase(std::unique(origin.begin(), origin.end()), origin.end());
  return origin;
}

cv::Point2d meanPlace(const std::vector<std::uint32_t>& members,
                      const std::vector<Walker>& inView) {
  cv::Point2d sum;
  for (const Walker& walker : inView) {
    sum += std::binary_search(members.begin(), members.end(), walker.id) ? walker.position
                                                                         : cv::Point2d();
  }
  return sum * (1.0 / static_cast<double>(members.size()));
}

}  // namespace

TruthRecorder::TruthRecorder(const std::filesystem::path& folder)
    : m_truth(folder / "truth.jsonl"),
      m_trueGroups(folder / "true_groups.jsonl"),
      m_eventFile(folder / "events.jsonl"),
      m_groupFile(folder / "groups.txt") {}

void TruthRecorder::write(const Moment& moment, const std::vector<Walker>& inView,
                          const std::vector<GroupEvent>& events) {
  const std::int64_t frame = moment.frame;
  m_lastFrame = frame;
  const Groups groups = groupsOf(inView);
  writeTruth(frame, groups, inView);
  countPairs(inView);
  for (const Walker& walker : inView) {
    m_persons.insert(walker.id);
  }
  for (const auto& [group, members] : groups) {
    const auto [life, isNew] = m_lives.try_emplace(group, Life{frame, frame, members});
    life->second.last = frame;
  }
  writeGroups(moment, groups, inView, events);
  for (const GroupEvent& event : events) {
    m_events.emplace_back(frame, event);
  }
}

void TruthRecorder::finish() {
  addCreatedAndEnded();
  writeEvents();
  writeSceneGroups();
}

void TruthRecorder::writeTruth(std::int64_t frame, const Groups& groups,
                               const std::vector<Walker>& inView) {
  m_line.clear();
  append(m_line, R"({{"frame": {}, "groups": )", frame);
  appendArray(m_line, groups, [this](const auto& group) { appendNumbers(m_line, group.second); });
  append(m_line, R"(, "ids": )");
  appendArray(m_line, groups, [this](const auto& group) { append(m_line, "{}", group.first); });
  append(m_line, R"(, "persons": )");
  appendNumbers(m_line, idsOf(inView));
  append(m_line, "}}\n");
  m_truth.writeLines({m_line.data(), m_line.size()});
}

void TruthRecorder::writeGroups(const Moment& moment, const Groups& groups,
                                const std::vector<Walker>& inView,
                                const std::vector<GroupEvent>& events) {
  FrameGroups line{moment.frame, moment.time, {}, idsOf(inView)};
  for (const auto& [group, members] : groups) {
    line.groups.push_back({static_cast<GroupId>(group), members, m_lives.at(group).first,
                           meanPlace(members, inView), 1.0, originOf(group, events)});
    std::erase_if(line.alone, [&grouped = members](std::uint32_t person) {
      return std::binary_search(grouped.begin(), grouped.end(), person);
    });
  }
  m_trueGroups.write(line);
}

void TruthRecorder::countPairs(const std::vector<Walker>& inView) {
  for (auto a = inView.begin(); a != inView.end(); ++a) {
    for (auto b = std::next(a); b != inView.end(); ++b) {
      Pair& pair = m_pairs[{a->id, b->id}];
      ++pair.seen;
      pair.together += a->group == b->group && a->group != GroupEvent::none ? 1 : 0;
    }
  }
}

// A group that splits off is told by its split, one that is absorbed by the merge.
void TruthRecorder::addCreatedAndEnded() {
  std::set<int> splitOff;
  std::set<int> absorbed;
  for (const auto& [frame, event] : m_events) {
    if (event.kind == Kind::split) {
      splitOff.insert(event.group);
    } else if (event.kind == Kind::merged) {
      absorbed.insert(event.other);
    }
  }
  for (const auto& [group, life] : m_lives) {
    if (!splitOff.contains(group)) {
      m_events.push_back({life.first, {Kind::created, group, GroupEvent::none, life.founders}});
    }
    if (!absorbed.contains(group) && life.last < m_lastFrame) {
      m_events.push_back({life.last + 1, {Kind::ended, group, GroupEvent::none, {}}});
    }
  }
  std::stable_sort(m_events.begin(), m_events.end(), [](const auto& a, const auto& b) {
    return std::tie(a.first, a.second.kind) < std::tie(b.first, b.second.kind);
  });
}

void TruthRecorder::writeEvents() {
  for (const auto& [frame, event] : m_events) {
    m_line.clear();
    append(m_line, R"({{"frame": {}, "event": "{}", )", frame, nameOf(event.kind));
    if (event.group != GroupEvent::none) {
      append(m_line, R"("group": {}, )", event.group);
    }
    if (event.other != GroupEvent::none) {
      append(m_line, R"("from": {}, )", event.other);
    }
    append(m_line, R"("persons": )");
    appendNumbers(m_line, event.persons);
    append(m_line, "}}\n");
    m_eventFile.writeLines({m_line.data(), m_line.size()});
  }
}

void TruthRecorder::writeSceneGroups() {
  std::set<std::uint32_t> grouped;
  JoinedSets sets(m_persons.empty() ? 0 : *m_persons.rbegin() + std::size_t{1});
  for (const auto& [pair, counts] : m_pairs) {
    if (2 * counts.together > counts.seen) {
      grouped.insert({pair.first, pair.second});
      sets.join(pair.second, pair.first);
    }
  }
  std::map<std::size_t, std::vector<std::uint32_t>> groups;
  for (const std::uint32_t person : grouped) {
    groups[sets.rootOf(person)].push_back(person);
  }
  for (const auto& [root, persons] : groups) {
    m_line.clear();
    append(m_line, "{}\n", json_line::joined(persons, " "));
    m_groupFile.writeLines({m_line.data(), m_line.size()});
  }
}

}  // namespace grouptracker
