#include "host/evaluation/ScoredSteps.h"

#include "host/base/InputFile.h"
#include "host/grouping/PeopleFrame.h"
#include "host/output/RunFile.h"
#include "host/run/GroupRun.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace grouptracker {

namespace {

void sortUnique(std::vector<Person>& persons) {
  std::sort(persons.begin(), persons.end());
  persons.erase(std::unique(persons.begin(), persons.end()), persons.end());
}

/// The persons of a visible group, ascending, perhaps a single one; nobody of any other group.
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

}  // namespace

std::vector<Person> personsOf(const FrameGroups& frame) {
  std::vector<Person> persons = frame.alone;
  for (const FoundGroup& group : frame.groups) {
    persons.insert(persons.end(), group.members.begin(), group.members.end());
  }
  sortUnique(persons);
  return persons;
}

std::vector<Person> personsOf(const RunStep& step) {
  std::vector<Person> persons;
  persons.reserve(step.persons.size());
  for (const RunPerson& person : step.persons) {
    persons.push_back(person.id);
  }
  sortUnique(persons);
  return persons;
}

Grouping groupingOf(const FrameGroups& frame) {
  std::vector<PersonGroup> lists;
  lists.reserve(frame.groups.size());
  for (const FoundGroup& group : frame.groups) {
    lists.push_back(group.members);
  }
  return joinOverlapping(lists);
}

Grouping groupingOf(const RunStep& step) {
  std::vector<PersonGroup> lists;
  lists.reserve(step.groups.size());
  for (const RunGroup& group : step.groups) {
    lists.push_back(personsOf(group));
  }
  return joinOverlapping(lists);
}

std::optional<FrameGroups> ProcessGroups::next(const RunStep& step) {
  if (!step.inputFrame) {
    return std::nullopt;
  }
  FrameGroups frame{*step.inputFrame, std::nullopt, {}, personsOf(step)};
  for (const RunGroup& group : step.groups) {
    PersonGroup persons = personsOf(group);
    std::vector<GroupId> origin = originOf(group);
    if (persons.size() < 2) {
      continue;
    }
    std::erase_if(frame.alone, [&persons](Person person) {
      return std::binary_search(persons.begin(), persons.end(), person);
    });
    FoundGroup& found = frame.groups.emplace_back();
    found.id = group.id;
    found.members = std::move(persons);
    found.since = m_since.try_emplace(group.id, *step.inputFrame).first->second;
    found.from = std::move(origin);
  }
  return frame;
}

std::vector<GroupId> ProcessGroups::originOf(const RunGroup& group) {
  Records& last = m_records[group.id];
  const Records now{group.merge.value_or(-1), group.split.value_or(-1)};
  std::vector<GroupId> origin;
  if (now.split != -1 && now.split != last.split) {
    origin = {static_cast<GroupId>(now.split)};
  }
  if (now.merge != -1 && now.merge != last.merge) {
    origin = {group.id, static_cast<GroupId>(now.merge)};
    std::sort(origin.begin(), origin.end());
  }
  last.merge = now.merge == -1 ? last.merge : now.merge;
  last.split = now.split == -1 ? last.split : now.split;
  return origin;
}

GroupedFrames readScored(std::istream& in, const std::string& name) {
  GroupedFrames run;
  ProcessGroups process;
  RunFileReader reader(in, name, RunFilePart::groupings);
  for (RunStep step; reader.next(step);) {
    if (step.source == GroupSource::evidence) {
      run.push_back(toFrameGroups(step));
    } else if (auto frame = process.next(step)) {
      run.push_back(*std::move(frame));
    }
  }
  return run;
}

GroupedFrames readScored(const std::string& path) {
  InputFile file(path);
  return readScored(file.stream(), path);
}

std::vector<double> secondsOf(const GroupedFrames& run) {
  const bool haveTimes =
      std::all_of(run.begin(), run.end(), [](const FrameGroups& frame) { return frame.time; });
  std::vector<double> seconds;
  seconds.reserve(run.size());
  for (const FrameGroups& frame : run) {
    seconds.push_back(haveTimes ? *frame.time
                                : static_cast<double>(seconds.size()) * ticks::usualLength);
  }
  return seconds;
}

std::optional<std::string> whyAboutOthers(const GroupTruth& truth, const GroupedFrames& run) {
  const GroupedFrames frames = annotated(run, truth);
  if (frames.empty() && !run.empty()) {
    return "lists none of the frames of ";
  }
  const bool isTogetherOnce =
      std::any_of(frames.begin(), frames.end(), [&truth](const FrameGroups& frame) {
        return !restrictTo(truth.at(frame.frame), personsOf(frame)).empty();
      });
  return isTogetherOnce || truth.whole().empty() || run.empty()
             ? std::nullopt
             : std::optional<std::string>("no group has two members in view together in ");
}

GroupedFrames annotated(const GroupedFrames& run, const GroupTruth& truth) {
  GroupedFrames frames;
  std::copy_if(run.begin(), run.end(), std::back_inserter(frames),
               [&truth](const FrameGroups& frame) { return truth.knows(frame.frame); });
  return frames;
}

}  // namespace grouptracker
