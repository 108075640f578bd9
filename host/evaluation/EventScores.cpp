#include "host/evaluation/EventScores.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace grouptracker {

namespace {

/// Something that happened to some persons, at the earliest and at the latest; seconds.
struct TimedEvent {
  double from = 0.0;
  double until = 0.0;
  PersonGroup persons;
};

using TimedEvents = std::vector<TimedEvent>;

/// The true groups of a step, with their identities when these are known.
struct TrueStep {
  const Grouping& groups;
  const GroupIds& ids;

  bool knows(std::uint32_t id) const { return std::find(ids.begin(), ids.end(), id) != ids.end(); }
};

/// The groups of `now` whose members come from several groups of `before`. Where identities are
/// known, one of these must be gone: somebody who changed from one group to another that both go
/// on brought nothing together.
void addJoined(const TrueStep& before, const TrueStep& now, TimedEvent event, TimedEvents& events) {
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
      event.persons = group;
      events.push_back(event);
    }
  }
}

/// How long after a true event another one was found, seconds; below 0 for before.
double delayOf(const TimedEvent& found, const TimedEvent& truth) {
  return found.from - std::clamp(found.from, truth.from, truth.until);
}

EventScore match(const TimedEvents& truth, const TimedEvents& found, double tolerance) {
  constexpr double rounding = 1e-6;  // seconds
  EventScore score{{0, std::ssize(found), std::ssize(truth)}, 0.0};
  std::vector<bool> isUsed(found.size(), false);
  for (const TimedEvent& event : truth) {
    std::size_t best = found.size();
    for (std::size_t i = 0; i < found.size(); ++i) {
      const double delay = std::abs(delayOf(found[i], event));
      const bool isNearer = best == found.size() || delay < std::abs(delayOf(found[best], event));
      if (!isUsed[i] && delay <= tolerance + rounding && isNearer &&
          overlap(event.persons, found[i].persons) > 0.0) {
        best = i;
      }
    }
    if (best != found.size()) {
      isUsed[best] = true;
      ++score.counts.matched;
      score.delay += delayOf(found[best], event);
    }
  }
  score.delay /= std::max(1.0, static_cast<double>(score.counts.matched));
  return score;
}

}  // namespace

EventScores scoreEvents(const GroupedFrames& run, const GroupTruth& truth, double tolerance) {
  TimedEvents merges;
  TimedEvents splits;
  TimedEvents foundMerges;
  TimedEvents foundSplits;
  const std::vector<double> seconds = secondsOf(run);
  std::size_t before = run.size();  // the annotated frame before; none at first
  for (std::size_t i = 0; i < run.size(); ++i) {
    for (const FoundGroup& group : run[i].groups) {
      if (!group.from.empty()) {
        TimedEvents& events = group.from.size() > 1 ? foundMerges : foundSplits;
        events.push_back({seconds[i], seconds[i], group.members});
      }
    }
    const std::int64_t frame = run[i].frame;
    if (!truth.knows(frame)) {
      continue;
    }
    if (before != run.size()) {
      const TrueStep was{truth.at(run[before].frame), truth.idsAt(run[before].frame)};
      const TrueStep is{truth.at(frame), truth.idsAt(frame)};
      addJoined(was, is, {seconds[before + 1], seconds[i], {}}, merges);
      addJoined(is, was, {seconds[before + 1], seconds[i], {}}, splits);
    }
    before = i;
  }
  return {match(merges, foundMerges, tolerance), match(splits, foundSplits, tolerance)};
}

}  // namespace grouptracker
