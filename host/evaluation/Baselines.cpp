#include "host/evaluation/Baselines.h"

#include <cmath>
#include <cstddef>

namespace grouptracker {

namespace {

constexpr double limit = 1.5;  // metres, of mean distance and of difference of displacements

double norm(const cv::Point2d& vector) {
  return std::hypot(vector.x, vector.y);
}

using Steps = std::vector<PlacedStep>::const_iterator;

bool walkTogether(Person a, Person b, Steps first, Steps end) {
  double distance = 0.0;
  for (auto step = first; step != end; ++step) {
    distance += norm(step->places.at(a) - step->places.at(b));
  }
  const auto last = std::prev(end);
  const cv::Point2d wayOfA = last->places.at(a) - first->places.at(a);
  const cv::Point2d wayOfB = last->places.at(b) - first->places.at(b);
  return distance / static_cast<double>(end - first) < limit && norm(wayOfA - wayOfB) < limit;
}

Grouping groupByRule(const std::vector<Person>& persons, Steps first, Steps end) {
  std::vector<PersonGroup> pairs;
  for (std::size_t i = 0; i < persons.size(); ++i) {
    for (std::size_t j = i + 1; j < persons.size(); ++j) {
      if (walkTogether(persons[i], persons[j], first, end)) {
        pairs.push_back({persons[i], persons[j]});
      }
    }
  }
  return joinOverlapping(pairs);
}

}  // namespace

std::vector<PlacedStep> placesOf(FrameSource& input) {
  std::vector<PlacedStep> steps;
  InputFrame frame;
  while (input.next(frame)) {
    PlacedStep step{frame.number, {}};
    for (const auto& actor : frame.actors) {
      if (!actor->getLinkedPhysicalObjectList().empty()) {
        const auto& current = *actor->getLinkedPhysicalObjectList().back()->getPhysicalObject();
        const auto& place = current.getPosition();
        step.places[actor->getIdent()] = cv::Point2d(place.x, place.y);
      }
    }
    steps.push_back(std::move(step));
  }
  return steps;
}

Baselines scoreBaselines(const std::vector<PlacedStep>& steps, const GroupTruth& truth,
                         const WindowOptions& options) {
  RunRecord nobody;  // a run that finds nothing: its windows have the right persons
  for (const PlacedStep& step : steps) {
    FoundStep& seen = nobody.emplace_back();
    seen.frame = step.frame;
    for (const auto& [person, place] : step.places) {
      seen.persons.push_back(person);
    }
  }
  std::vector<PartitionPair> windows;
  std::vector<PartitionPair> byRule;
  const auto length = static_cast<std::ptrdiff_t>(options.length);
  for (std::ptrdiff_t i = 0; i + length <= std::ssize(steps); i += length) {
    const RunRecord part(nobody.begin() + i, nobody.begin() + i + length);
    for (PartitionPair& window : windowsOf(part, truth, options)) {
      windows.push_back(window);
      window.found = groupByRule(window.persons, steps.begin() + i, steps.begin() + i + length);
      byRule.push_back(std::move(window));
    }
  }
  return {meanMitre(windows), meanMitre(byRule)};
}

}  // namespace grouptracker
