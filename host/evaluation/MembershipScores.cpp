#include "host/evaluation/MembershipScores.h"

#include "host/evaluation/Assignment.h"
#include "host/evaluation/TrueIdentities.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

/// The place of each id in a matrix, in order of their first use.
class Places {
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

Counts identityMatches(const GroupedFrames& frames, const GroupTruth& truth) {
  Counts counts;
  TrueIdentities identities;
  Places trueGroups;
  Places foundGroups;
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
