#include "host/evaluation/Baselines.h"

#include "host/base/Interruption.h"
#include "host/run/RunStep.h"

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

using Places = std::map<Person, cv::Point2d>;

Places placesOf(const PeopleFrame& frame) {
  Places places;
  for (const PersonAt& person : frame.people) {
    places[person.person] = person.place;
  }
  return places;
}

/// The same frame with everybody alone.
FrameGroups withoutGroups(const PeopleFrame& frame) {
  FrameGroups groups{frame.number, frame.time, {}, {}};
  for (const PersonAt& person : frame.people) {
    groups.alone.push_back(person.person);
  }
  return groups;
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

Grouping groupByRule(const std::vector<Person>& persons, const std::vector<Places>& window) {
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

PeopleFrame peopleIn(const InputFrame& frame) {
  std::map<PersonId, cv::Point2d> places;  // of several actors with one id the last counts
  for (const RunPerson& person : personsIn(frame)) {
    if (person.seen && std::isfinite(person.seen->ground.x) &&
        std::isfinite(person.seen->ground.y)) {
      places[person.id] = person.seen->ground;
    }
  }
  PeopleFrame people{frame.number, frame.time, {}};
  for (const auto& [person, place] : places) {
    people.people.push_back({person, place});
  }
  return people;
}

std::vector<PeopleFrame> peopleIn(FrameSource& input) {
  std::vector<PeopleFrame> frames;
  for (InputFrame frame; input.next(frame);) {
    LongWork::step();
    frames.push_back(peopleIn(frame));
  }
  return frames;
}

Baselines scoreBaselines(const std::vector<PeopleFrame>& frames, const GroupTruth& truth,
                         const WindowOptions& options) {
  GroupedFrames alone;
  std::vector<Places> places;
  for (const PeopleFrame& frame : frames) {
    if (truth.knows(frame.number)) {
      alone.push_back(withoutGroups(frame));
      places.push_back(placesOf(frame));
    }
  }
  std::vector<PartitionPair> windows;
  std::vector<PartitionPair> byRule;
  const auto length = static_cast<std::ptrdiff_t>(options.length);
  for (std::ptrdiff_t i = 0; i + length <= std::ssize(alone); i += length) {
    const GroupedFrames part(alone.begin() + i, alone.begin() + i + length);
    for (PartitionPair& window : windowsOf(part, truth, options)) {
      windows.push_back(window);
      window.found = groupByRule(
          window.persons, std::vector<Places>(places.begin() + i, places.begin() + i + length));
      byRule.push_back(std::move(window));
    }
  }
  return {meanMitre(windows), meanMitre(byRule)};
}

}  // namespace grouptracker
