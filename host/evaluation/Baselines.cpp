#include "host/evaluation/Baselines.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <map>
#include <utility>

namespace grouptracker {

namespace {

constexpr double limit = 1.5;  // metres, of mean distance and of difference of displacements

double norm(const cv::Point2d& vector) {
  return std::hypot(vector.x, vector.y);
}

/// Where everybody is at one step; of several actors with one id the last counts.
using Places = std::map<Person, cv::Point2d>;

Places placesOf(const RunStep& step) {
  Places places;
  for (const RunPerson& person : step.persons) {
    if (person.seen) {
      places[person.id] = person.seen->ground;
    }
  }
  return places;
}

bool walkTogether(Person a, Person b, const std::vector<Places>& window) {
  double distance = 0.0;
  for (const Places& places : window) {
    distance += norm(places.at(a) - places.at(b));
  }
  const cv::Point2d wayOfA = window.back().at(a) - window.front().at(a);
  const cv::Point2d wayOfB = window.back().at(b) - window.front().at(b);
  return distance / static_cast<double>(window.size()) < limit && norm(wayOfA - wayOfB) < limit;
}

Grouping groupByRule(const std::vector<Person>& persons, const RunSteps& steps) {
  std::vector<Places> window;
  std::transform(steps.begin(), steps.end(), std::back_inserter(window), placesOf);
  std::vector<PersonGroup> pairs;
  for (std::size_t i = 0; i < persons.size(); ++i) {
    for (std::size_t j = i + 1; j < persons.size(); ++j) {
      if (walkTogether(persons[i], persons[j], window)) {
        pairs.push_back({persons[i], persons[j]});
      }
    }
  }
  return joinOverlapping(pairs);
}

}  // namespace

RunSteps stepsWithoutGroups(FrameSource& input) {
  RunSteps steps;
  InputFrame frame;
  while (input.next(frame)) {
    RunStep& step = steps.emplace_back();
    step.inputFrame = frame.number;
    step.persons = personsIn(frame);
    std::erase_if(step.persons, [](const RunPerson& person) { return !person.seen; });
  }
  return steps;
}

Baselines scoreBaselines(const RunSteps& steps, const GroupTruth& truth,
                         const WindowOptions& options) {
  std::vector<PartitionPair> windows;
  std::vector<PartitionPair> byRule;
  const auto length = static_cast<std::ptrdiff_t>(options.length);
  for (std::ptrdiff_t i = 0; i + length <= std::ssize(steps); i += length) {
    const RunSteps part(steps.begin() + i, steps.begin() + i + length);
    for (PartitionPair& window : windowsOf(part, truth, options)) {
      windows.push_back(window);
      window.found = groupByRule(window.persons, part);
      byRule.push_back(std::move(window));
    }
  }
  return {meanMitre(windows), meanMitre(byRule)};
}

}  // namespace grouptracker
