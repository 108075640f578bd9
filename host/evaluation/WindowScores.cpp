#include "host/evaluation/WindowScores.h"

#include "host/base/Interruption.h"
#include "host/evaluation/Togetherness.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace grouptracker {

namespace {

std::vector<Person> commonPersons(const std::vector<Person>& a, const std::vector<Person>& b) {
  std::vector<Person> common;
  std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(common));
  return common;
}

/// Connects those of the persons who are together in so many of the groupings.
Grouping connected(const std::vector<const Grouping*>& steps, const std::vector<Person>& persons,
                   std::size_t minimum) {
  std::vector<std::pair<Person, Person>> pairs;
  for (const Grouping* const groups : steps) {
    for (const PersonGroup& group : restrictTo(*groups, persons)) {
      for (auto a = group.begin(); a != group.end(); ++a) {
        std::for_each(a + 1, group.end(), [&](Person b) { pairs.emplace_back(*a, b); });
      }
    }
  }
  std::sort(pairs.begin(), pairs.end());
  std::vector<PersonGroup> companions;
  for (auto pair = pairs.begin(); pair != pairs.end();) {
    const auto next =
        std::find_if(pair, pairs.end(), [&](const auto& other) { return other != *pair; });
    if (static_cast<std::size_t>(next - pair) >= minimum) {
      companions.push_back({pair->first, pair->second});
    }
    pair = next;
  }
  return joinOverlapping(companions);
}

}  // namespace

WindowedRun::WindowedRun(const GroupedFrames& run) {
  m_frames.reserve(run.size());
  for (const FrameGroups& frame : run) {
    LongWork::step();
    m_frames.push_back({frame.frame, personsOf(frame), groupingOf(frame)});
  }
}

std::vector<PartitionPair> WindowedRun::windows(std::size_t first, const GroupTruth& truth,
                                                const WindowOptions& options) const {
  std::vector<PartitionPair> windows;
  const std::size_t end = m_frames.size();
  for (; first < end && end - first >= options.length; first += options.length) {
    LongWork::step();
    PartitionPair window = windowAt(first, truth, options);
    if (window.persons.size() > 1) {
      windows.push_back(std::move(window));
    }
  }
  return windows;
}

PartitionPair WindowedRun::windowAt(std::size_t first, const GroupTruth& truth,
                                    const WindowOptions& options) const {
  PartitionPair window;
  window.persons = m_frames[first].persons;
  std::vector<std::int64_t> numbers;
  std::vector<const Grouping*> groups;
  for (std::size_t i = first; i < first + options.length; ++i) {
    window.persons = commonPersons(window.persons, m_frames[i].persons);
    numbers.push_back(m_frames[i].number);
    groups.push_back(&m_frames[i].groups);
  }
  window.truth = truth.over(numbers, window.persons);
  window.found = connected(groups, window.persons, options.together);
  return window;
}

std::vector<PartitionPair> windowsOf(const GroupedFrames& run, const GroupTruth& truth,
                                     const WindowOptions& options) {
  return WindowedRun(run).windows(0, truth, options);
}

PrecisionRecall meanMitre(const std::vector<PartitionPair>& windows) {
  PrecisionRecall mean;
  for (const PartitionPair& window : windows) {
    const PrecisionRecall scores = groupMitre(window);
    mean.precision += scores.precision;
    mean.recall += scores.recall;
    mean.f1 += scores.f1;
  }
  if (const auto count = static_cast<double>(windows.size()); count > 0.0) {
    mean.precision /= count;
    mean.recall /= count;
    mean.f1 /= count;
  }
  return mean;
}

PartitionPair wholeSequence(const GroupedFrames& run, const GroupTruth& truth,
                            const WindowOptions& options) {
  PartitionPair whole;
  std::set<Person> everybody;
  Togetherness together;
  for (const FrameGroups& step : run) {
    LongWork::step();
    const auto persons = personsOf(step);
    everybody.insert(persons.begin(), persons.end());
    together.add(groupingOf(step), persons);
  }
  whole.persons.assign(everybody.begin(), everybody.end());
  whole.truth = restrictTo(truth.whole(), whole.persons);
  whole.found = restrictTo(
      together.forPart(static_cast<double>(options.together) / static_cast<double>(options.length)),
      whole.persons);
  return whole;
}

}  // namespace grouptracker
