#include "host/evaluation/TimeScores.h"

#include "host/evaluation/ScoredSteps.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace grouptracker {

namespace {

constexpr double correspondence = 0.5;  // of the larger group

/// What is known of a true group so far.
struct Following {
  std::size_t firstSeen = 0;
  std::optional<std::size_t> firstFound;
  std::uint32_t lastId = 0;
};

/// Tells which true groups of several steps are the same one: those of one id, or without ids those
/// of the same members.
class TrueIdentities {
 public:
  std::size_t of(const PersonGroup& group, const GroupIds& ids, std::size_t place) {
    const auto next = m_byMembers.size() + m_byId.size();
    return ids.empty() ? m_byMembers.try_emplace(group, next).first->second
                       : m_byId.try_emplace(ids[place], next).first->second;
  }

 private:
  std::map<PersonGroup, std::size_t> m_byMembers;
  std::map<std::uint32_t, std::size_t> m_byId;
};

/// The persons of the found groups of two and more, by the groups' ids.
using FoundGroups = std::map<std::uint32_t, PersonGroup>;

FoundGroups groupsFoundAt(const RunStep& step) {
  FoundGroups found;
  for (const RunGroup& group : step.groups) {
    PersonGroup persons = personsOf(group);
    if (persons.size() > 1) {
      found.emplace(group.id, std::move(persons));
    }
  }
  return found;
}

std::optional<std::uint32_t> correspondingTo(const PersonGroup& truth, const FoundGroups& found) {
  std::optional<std::uint32_t> best;
  double bestOverlap = 0.0;
  for (const auto& [id, persons] : found) {
    const double common = overlap(truth, persons);
    if (reaches(common, correspondence) && common > bestOverlap) {
      best = id;
      bestOverlap = common;
    }
  }
  return best;
}

}  // namespace

TimeScores scoreTime(const RunSteps& run, const GroupTruth& truth) {
  TimeScores scores;
  TrueIdentities identities;
  std::map<std::size_t, Following> trueGroups;  // by identity
  std::set<std::uint32_t> found;
  std::set<std::uint32_t> corresponding;
  for (std::size_t i = 0; i < run.size(); ++i) {
    const FoundGroups now = groupsFoundAt(run[i]);
    for (const auto& [id, persons] : now) {
      found.insert(id);
    }
    const auto inView = personsOf(run[i]);
    const std::int64_t frame = *run[i].inputFrame;
    const Grouping& groups = truth.at(frame);
    for (std::size_t place = 0; place < groups.size(); ++place) {
      const Grouping present = restrictTo({groups[place]}, inView);
      if (present.empty()) {
        continue;
      }
      const auto identity = identities.of(groups[place], truth.idsAt(frame), place);
      Following& following = trueGroups.try_emplace(identity, Following{i, {}, 0}).first->second;
      if (const auto id = correspondingTo(present.front(), now)) {
        corresponding.insert(*id);
        scores.identityChanges += following.firstFound && *id != following.lastId ? 1 : 0;
        following.firstFound = following.firstFound ? following.firstFound : i;
        following.lastId = *id;
      }
    }
  }
  scores.foundGroups = static_cast<int>(found.size());
  scores.falseGroups = static_cast<int>(found.size() - corresponding.size());
  scores.trueGroups = static_cast<int>(trueGroups.size());
  for (const auto& [group, following] : trueGroups) {
    if (following.firstFound) {
      scores.untilFound += static_cast<double>(*following.firstFound - following.firstSeen);
    } else {
      ++scores.neverFound;
    }
  }
  scores.untilFound /= std::max(1, scores.trueGroups - scores.neverFound);
  return scores;
}

namespace {

/// Something that happened to some persons at a time step.
struct Event {
  std::size_t step = 0;
  PersonGroup persons;
};

/// The true groups of a step, with their identities when these are known.
struct TrueStep {
  const Grouping& groups;
  const GroupIds& ids;

  bool knows(std::uint32_t id) const { return std::find(ids.begin(), ids.end(), id) != ids.end(); }
};

/// The groups of `now` whose members come from several groups of `before`. Where identities are
/// known, one of these must be gone: somebody who changed from one group to another that both go
/// on brought nothing together.
void addJoined(const TrueStep& before, const TrueStep& now, std::size_t step,
               std::vector<Event>& events) {
  for (const PersonGroup& group : now.groups) {
    int sources = 0;
    bool isOneGone = before.ids.empty();
    for (std::size_t i = 0; i < before.groups.size(); ++i) {
      if (overlap(before.groups[i], group) > 0.0) {
        ++sources;
        isOneGone = isOneGone || !now.knows(before.ids[i]);
      }
    }
    if (sources > 1 && isOneGone) {
      events.push_back({step, group});
    }
  }
}

/// The steps at which a found group's record of an event appears or changes.
std::vector<Event> recorded(const RunSteps& run, std::optional<std::int64_t> RunGroup::*other) {
  std::vector<Event> events;
  std::map<std::uint32_t, std::int64_t> last;
  for (std::size_t i = 0; i < run.size(); ++i) {
    for (const RunGroup& group : run[i].groups) {
      std::int64_t& before = last.try_emplace(group.id, -1).first->second;
      const std::int64_t now = (group.*other).value_or(-1);
      if (now != -1 && now != before) {
        events.push_back({i, personsOf(group)});
      }
      before = now == -1 ? before : now;
    }
  }
  return events;
}

Counts matchEvents(const std::vector<Event>& truth, const std::vector<Event>& found,
                   std::size_t tolerance) {
  Counts counts{0, std::ssize(found), std::ssize(truth)};
  std::vector<bool> isUsed(found.size(), false);
  for (const Event& event : truth) {
    for (std::size_t i = 0; i < found.size(); ++i) {
      const std::size_t apart =
          std::max(event.step, found[i].step) - std::min(event.step, found[i].step);
      if (!isUsed[i] && apart <= tolerance && overlap(event.persons, found[i].persons) > 0.0) {
        isUsed[i] = true;
        ++counts.matched;
        break;
      }
    }
  }
  return counts;
}

}  // namespace

EventScores scoreEvents(const RunSteps& run, const GroupTruth& truth, std::size_t tolerance) {
  std::vector<Event> merges;
  std::vector<Event> splits;
  for (std::size_t i = 1; i < run.size(); ++i) {
    const TrueStep before{truth.at(*run[i - 1].inputFrame), truth.idsAt(*run[i - 1].inputFrame)};
    const TrueStep now{truth.at(*run[i].inputFrame), truth.idsAt(*run[i].inputFrame)};
    addJoined(before, now, i, merges);
    addJoined(now, before, i, splits);
  }
  return {matchEvents(merges, recorded(run, &RunGroup::merge), tolerance),
          matchEvents(splits, recorded(run, &RunGroup::split), tolerance)};
}

}  // namespace grouptracker
