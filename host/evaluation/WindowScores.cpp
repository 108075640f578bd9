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

PartitionPair windowFrom(GroupedFrames::const_iterator first, GroupedFrames::const_iterator end,
                         const GroupTruth& truth, std::size_t minimum) {
  PartitionPair window;
  window.persons = personsOf(*first);
  Togetherness together;
  std::vector<std::int64_t> frames;
  for (auto step = first; step != end; ++step) {
    const auto persons = personsOf(*step);
    window.persons = commonPersons(window.persons, persons);
    together.add(groupingOf(*step), persons);
    frames.push_back(step->frame);
  }
  window.truth = restrictTo(truth.over(frames), window.persons);
  window.found = together.among(window.persons, minimum);
  return window;
}

}  // namespace

std::vector<PartitionPair> windowsOf(const GroupedFrames& run, const GroupTruth& truth,
                                     const WindowOptions& options) {
  std::vector<PartitionPair> windows;
  const auto length = static_cast<std::ptrdiff_t>(options.length);
  for (auto first = run.begin(); run.end() - first >= length; first += length) {
    LongWork::step();
    PartitionPair window = windowFrom(first, first + length, truth, options.together);
    if (window.persons.size() > 1) {
      windows.push_back(std::move(window));
    }
  }
  return windows;
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
