#include "host/evaluation/FrameScores.h"

#include "host/base/Interruption.h"
#include "host/base/JsonLine.h"
#include "host/base/OutputFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>

namespace grouptracker {

namespace {

/// The companions of everybody who has any.
std::map<Person, PersonGroup> companions(const Grouping& groups) {
  std::map<Person, PersonGroup> others;
  for (const PersonGroup& group : groups) {
    for (const Person person : group) {
      std::remove_copy(group.begin(), group.end(), std::back_inserter(others[person]), person);
    }
  }
  return others;
}

PersonGroup without(const PersonGroup& all, const PersonGroup& some) {
  PersonGroup rest;
  std::set_difference(all.begin(), all.end(), some.begin(), some.end(), std::back_inserter(rest));
  return rest;
}

const char* describe(const PersonGroup& truth, const PersonGroup& found) {
  if (found.empty()) {
    return "not found";
  }
  return truth.empty() ? "not a member" : "wrong companions";
}

std::string errorsOf(std::int64_t frame, const PartitionPair& step) {
  auto truth = companions(step.truth);
  auto found = companions(step.found);
  std::string lines;
  for (const Person person : step.persons) {
    const PersonGroup& wanted = truth[person];
    const PersonGroup& got = found[person];
    if (wanted != got) {
      lines += fmt::format("{},{},{},{},{}\n", frame, person, describe(wanted, got),
                           json_line::joined(without(wanted, got), " "),
                           json_line::joined(without(got, wanted), " "));
    }
  }
  return lines;
}

}  // namespace

std::vector<PartitionPair> stepsOf(const GroupedFrames& run, const GroupTruth& truth) {
  std::vector<PartitionPair> steps;
  steps.reserve(run.size());
  for (const FrameGroups& step : run) {
    LongWork::step();
    PartitionPair& pair = steps.emplace_back();
    pair.persons = personsOf(step);
    pair.truth = restrictTo(truth.at(step.frame), pair.persons);
    pair.found = restrictTo(groupingOf(step), pair.persons);
  }
  return steps;
}

FrameScores scoreFrames(const std::vector<PartitionPair>& steps) {
  FrameScores scores;
  int compared = 0;
  for (const PartitionPair& step : steps) {
    LongWork::step();
    if (step.persons.size() < 2) {
      continue;
    }
    ++compared;
    for (std::size_t i = 0; i < FrameScores::tolerances.size(); ++i) {
      scores.correctGroups[i] += correctGroups(step, FrameScores::tolerances[i]);
    }
    scores.pairs += pairCounts(step);
    scores.adjustedRand += adjustedRandIndex(step);
  }
  scores.adjustedRand /= compared > 0 ? compared : 1;
  return scores;
}

void writeErrorList(const GroupedFrames& run, const std::vector<PartitionPair>& steps,
                    const std::string& path) {
  OutputFile file(path);
  file.writeLines("frame,person,error,missing,extra\n");
  for (std::size_t i = 0; i < steps.size(); ++i) {
    file.writeLines(errorsOf(run[i].frame, steps[i]));
  }
}

}  // namespace grouptracker
