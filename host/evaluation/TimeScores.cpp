#include "host/evaluation/TimeScores.h"

#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/TrueIdentities.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <set>

namespace grouptracker {

namespace {

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

}  // namespace grouptracker
