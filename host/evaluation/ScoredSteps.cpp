#include "host/evaluation/ScoredSteps.h"

#include "host/base/InputFile.h"
#include "host/grouping/PeopleFrame.h"
#include "host/output/RunFile.h"
#include "host/run/GroupRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>
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

/// Calls with both persons of every pair within a group, the lower id first.
template <typename Use>
void forEachPair(const Grouping& groups, const Use& use) {
  for (const PersonGroup& group : groups) {
    for (auto a = group.begin(); a != group.end(); ++a) {
      std::for_each(a + 1, group.end(), [&](Person b) { use(*a, b); });
    }
  }
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

std::optional<std::string> doubtAboutPeople(const GroupTruth& truth, const GroupedFrames& run) {
  // On public sequences companions share 88 to 98 % of the time at which either is in view, in the
  // groups of another sequence 73 % at most.
  constexpr double leastShared = 0.8;
  constexpr int fewestToJudge = 10;  // pairs
  if (truth.isPerFrame()) {
    return std::nullopt;
  }
  const Grouping groups = truth.whole();
  std::map<Person, int> seen;  // frames
  std::map<std::pair<Person, Person>, int> together;
  for (const FrameGroups& frame : run) {
    const PersonGroup persons = personsOf(frame);
    for (const Person person : persons) {
      ++seen[person];
    }
    forEachPair(restrictTo(groups, persons), [&together](Person a, Person b) {
      ++together[{a, b}];
    });
  }
  int pairs = 0;
  double shared = 0.0;
  forEachPair(groups, [&](Person a, Person b) {
    if (seen.contains(a) && seen.contains(b)) {
      const int common = together[{a, b}];
      shared += static_cast<double>(common) / (seen[a] + seen[b] - common);
      ++pairs;
    }
  });
  if (pairs < fewestToJudge || shared / pairs >= leastShared) {
    return std::nullopt;
  }
  return fmt::format(
      "its companions are in view together for {:.0f} % of their time only: is it "
      "about other people?",
      100.0 * shared / pairs);
}

GroupedFrames annotated(const GroupedFrames& run, const GroupTruth& truth) {
  GroupedFrames frames;
  std::copy_if(run.begin(), run.end(), std::back_inserter(frames),
               [&truth](const FrameGroups& frame) { return truth.knows(frame.frame); });
  return frames;
}

}  // namespace grouptracker
