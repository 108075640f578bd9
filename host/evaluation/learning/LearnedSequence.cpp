#include "host/evaluation/learning/LearnedSequence.h"

#include "host/base/Interruption.h"
#include "host/evaluation/FrameScores.h"
#include "host/evaluation/WindowScores.h"
#include "host/grouping/GroupFinder.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace grouptracker {

namespace {

GroupedFrames findGroups(GroupFinder& finder, const std::vector<PeopleFrame>& frames) {
  GroupedFrames groups;
  const auto take = [&groups](std::vector<FrameGroups> decided) {
    std::move(decided.begin(), decided.end(), std::back_inserter(groups));
  };
  for (const PeopleFrame& frame : frames) {
    LongWork::step();
    take(finder.next(frame));
  }
  take(finder.finish());
  return groups;
}

}  // namespace

LearnedSequence::LearnedSequence(std::string name, std::vector<PeopleFrame> frames,
                                 GroupTruth truth, double lookAhead)
    : m_name(std::move(name)),
      m_frames(std::move(frames)),
      m_truth(std::move(truth)),
      m_lookAhead(lookAhead),
      m_examples(EvidenceModel::builtIn()) {
  GroupFinder finder(EvidenceModel::builtIn(), m_lookAhead);
  finder.watchTicks([this](const PeopleFrame& frame, const TickBeliefs& beliefs) {
    m_examples.add(frame.number, beliefs, m_truth);
  });
  const auto seconds = secondsOf(findGroups(finder, m_frames));
  if (!seconds.empty()) {
    m_middle = (seconds.front() + seconds.back()) / 2;
  }
}

GroupedFrames LearnedSequence::groupsBy(const EvidenceModel& model) const {
  GroupFinder finder(model, m_lookAhead);
  return findGroups(finder, m_frames);
}

double LearnedSequence::scoreOf(const GroupedFrames& groups, double from) const {
  constexpr std::size_t mostlyCorrect = 1;  // among the tolerances: two thirds
  const auto seconds = secondsOf(groups);
  const auto first = std::lower_bound(seconds.begin(), seconds.end(), from) - seconds.begin();
  const GroupedFrames frames =
      annotated(GroupedFrames(groups.begin() + first, groups.end()), m_truth);
  if (2 * annotated(groups, m_truth).size() < groups.size()) {
    return scoreFrames(stepsOf(frames, m_truth)).correctGroups[mostlyCorrect].scores().f1;
  }
  return meanMitre(windowsOf(frames, m_truth, {})).f1;
}

}  // namespace grouptracker
