#include "host/evaluation/ScoredSteps.h"

#include "host/base/InputFile.h"
#include "host/output/RunFile.h"

#include <algorithm>
#include <utility>

namespace grouptracker {

namespace {

void sortUnique(std::vector<Person>& persons) {
  std::sort(persons.begin(), persons.end());
  persons.erase(std::unique(persons.begin(), persons.end()), persons.end());
}

}  // namespace

std::vector<Person> personsOf(const RunStep& step) {
  std::vector<Person> persons;
  persons.reserve(step.persons.size());
  for (const RunPerson& person : step.persons) {
    persons.push_back(person.id);
  }
  sortUnique(persons);
  return persons;
}

PersonGroup personsOf(const RunGroup& group) {
  PersonGroup persons;
  for (const RunMember& member : group.members) {
    if (group.isVisible && member.person) {
      persons.push_back(*member.person);
    }
  }
  sortUnique(persons);
  return persons;
}

Grouping groupingOf(const RunStep& step) {
  std::vector<PersonGroup> lists;
  lists.reserve(step.groups.size());
  for (const RunGroup& group : step.groups) {
    lists.push_back(personsOf(group));
  }
  return joinOverlapping(lists);
}

void addScored(RunStep step, RunSteps& run) {
  if (!step.inputFrame) {
    return;
  }
  std::erase_if(step.groups, [](const RunGroup& group) { return personsOf(group).empty(); });
  for (RunGroup& group : step.groups) {
    group.properties = {};
  }
  run.push_back(std::move(step));
}

RunSteps readScored(std::istream& in, const std::string& name) {
  RunSteps run;
  RunFileReader reader(in, name, RunFilePart::groupings);
  for (RunStep step; reader.next(step);) {
    addScored(std::move(step), run);
  }
  return run;
}

RunSteps readScored(const std::string& path) {
  InputFile file(path);
  return readScored(file.stream(), path);
}

}  // namespace grouptracker
