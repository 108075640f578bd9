#include "host/evaluation/TimeScores.h"

#include "host/evaluation/Assignment.h"
#include "host/evaluation/PartitionScores.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

/// Tells which true groups of several frames are the same one: those of one id, or where the truth
/// has no ids those of the same members.
class TrueIdentities {
 public:
  /// The true groups of which two persons and more are in view, those members, and which groups
  /// they are.
  std::vector<std::pair<std::size_t, PersonGroup>> presentAt(std::int64_t frame,
                                                             const GroupTruth& truth,
                                                             const std::vector<Person>& inView) {
    std::vector<std::pair<std::size_t, PersonGroup>> present;
    const Grouping& groups = truth.at(frame);
    for (std::size_t place = 0; place < groups.size(); ++place) {
      Grouping members = restrictTo({groups[place]}, inView);
      if (!members.empty()) {
        present.emplace_back(of(groups[place], truth.idsAt(frame), place),
                             std::move(members.front()));
      }
    }
    return present;
  }

 private:
  std::size_t of(const PersonGroup& group, const GroupIds& ids, std::size_t place) {
    const auto next = m_byMembers.size() + m_byId.size();
    return ids.empty() ? m_byMembers.try_emplace(group, next).first->second
                       : m_byId.try_emplace(ids[place], next).first->second;
  }

  std::map<PersonGroup, std::size_t> m_byMembers;
  std::map<std::uint32_t, std::size_t> m_byId;
};

constexpr double correspondence = 0.5;  // of the larger group

/// What is known of a true group so far.
struct Following {
  std::size_t firstSeen = 0;
  std::optional<std::size_t> firstFound;
  GroupId lastId = 0;
};

std::optional<GroupId> correspondingTo(const PersonGroup& truth,
                                       const std::vector<FoundGroup>& found) {
  std::optional<GroupId> best;
  double bestOverlap = 0.0;
  for (const FoundGroup& group : found) {
    const double common = overlap(truth, group.members);
    if (reaches(common, correspondence) && common > bestOverlap) {
      best = group.id;
      bestOverlap = common;
    }
  }
  return best;
}

/// The place of each id in a matrix, in order of their first use.
class Numbering {
 public:
  std::size_t of(std::size_t id) { return m_places.try_emplace(id, m_places.size()).first->second; }
  std::size_t count() const { return m_places.size(); }

 private:
  std::map<std::size_t, std::size_t> m_places;
};

std::int64_t commonMembers(const PersonGroup& a, const PersonGroup& b) {
  PersonGroup common;
  std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(common));
  return std::ssize(common);
}

}  // namespace

TimeScores scoreTime(const GroupedFrames& frames, const GroupTruth& truth) {
  TimeScores scores;
  TrueIdentities identities;
  std::map<std::size_t, Following> trueGroups;  // by identity
  std::set<GroupId> found;
  std::set<GroupId> corresponding;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    for (const FoundGroup& group : frames[i].groups) {
      found.insert(group.id);
    }
    const auto present = identities.presentAt(frames[i].frame, truth, personsOf(frames[i]));
    for (const auto& [identity, members] : present) {
      Following& following = trueGroups.try_emplace(identity, Following{i, {}, 0}).first->second;
      if (const auto id = correspondingTo(members, frames[i].groups)) {
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

Counts identityMatches(const GroupedFrames& frames, const GroupTruth& truth) {
  Counts counts;
  TrueIdentities identities;
  Numbering trueGroups;
  Numbering foundGroups;
  std::map<std::pair<std::size_t, std::size_t>, std::int64_t> common;
  for (const FrameGroups& frame : frames) {
    for (const FoundGroup& group : frame.groups) {
      counts.found += std::ssize(group.members);
    }
    const auto groups = identities.presentAt(frame.frame, truth, personsOf(frame));
    for (const auto& [identity, members] : groups) {
      counts.truth += std::ssize(members);
      for (const FoundGroup& group : frame.groups) {
        if (const std::int64_t both = commonMembers(members, group.members)) {
          common[{trueGroups.of(identity), foundGroups.of(group.id)}] += both;
        }
      }
    }
  }
  Matches matches(trueGroups.count(), foundGroups.count());
  for (const auto& [pair, members] : common) {
    matches.set(pair.first, pair.second, members);
  }
  counts.matched = largestSum(matches);
  return counts;
}

Flicker flickerOf(const GroupedFrames& run) {
  constexpr double rounding = 1e-9;
  Flicker flicker;
  const std::vector<double> seconds = secondsOf(run);
  std::map<std::pair<Person, GroupId>, std::size_t> lastIn;  // the last frame with the membership
  for (std::size_t i = 0; i < run.size(); ++i) {
    for (const FoundGroup& group : run[i].groups) {
      for (const Person person : group.members) {
        const auto [last, isFirst] = lastIn.try_emplace({person, group.id}, i);
        const bool joins = isFirst || last->second + 1 != i;
        const bool isBack =
            !isFirst && joins && seconds[i] - seconds[last->second] <= Flicker::moment + rounding;
        flicker.joins += joins ? 1 : 0;
        flicker.back += isBack ? 1 : 0;
        last->second = i;
      }
    }
  }
  return flicker;
}

}  // namespace grouptracker
