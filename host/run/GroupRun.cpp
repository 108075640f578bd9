#include "host/run/GroupRun.h"

#include "host/grouping/PeopleFrame.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace grouptracker {

namespace {

constexpr double usefulLookAhead = 3.2;    // seconds, with which the built-in model was learned
constexpr double positionsPerMetre = 1e4;  // as fine as positions are told
constexpr double confidences = 1e4;

/// Rounded to a part of the unit, so that lines stay short and do not depend on the last bits.
double rounded(double value, double parts) {
  const double whole = std::round(value * parts);
  return whole == 0.0 ? 0.0 : whole / parts;
}

bool isOnTheGround(const RunPerson& person) {
  return std::isfinite(person.seen->ground.x) && std::isfinite(person.seen->ground.y);
}

/// Everybody in view whose place can be compared with others'.
PeopleFrame peopleIn(const RunStep& step) {
  PeopleFrame people{step.inputFrame.value_or(0), step.time, {}};
  people.people.reserve(step.persons.size());
  for (const RunPerson& person : step.persons) {
    if (isOnTheGround(person)) {
      people.people.push_back({person.id, cv::Point2d(person.seen->ground)});
    }
  }
  return people;
}

RunGroup toRunGroup(const FoundGroup& found) {
  RunGroup group;
  group.id = found.id;
  group.isVisible = true;
  group.members.reserve(found.members.size());
  for (const PersonId person : found.members) {
    group.members.push_back({{}, person, {}});
  }
  group.position = cv::Point3f(static_cast<float>(rounded(found.position.x, positionsPerMetre)),
                               static_cast<float>(rounded(found.position.y, positionsPerMetre)), 0);
  group.since = found.since;
  group.confidence = rounded(found.confidence, confidences);
  group.from = found.from;
  return group;
}

}  // namespace

RunSteps GroupRun::advance(const InputFrame& frame) {
  return advance(stepOf(frame));
}

RunSteps GroupRun::advance(RunStep seen) {
  seen.source = GroupSource::evidence;
  seen.frame = ++m_frame;
  seen.reportedFrame = static_cast<std::int32_t>(m_frame);
  m_noted.push_back(std::move(seen));
  const PeopleFrame people = peopleIn(m_noted.back());
  if (m_finder) {
    return describe(m_finder->next(people));
  }
  const bool isKnown = m_options.lookAhead || m_options.delay == 0;
  if (!isKnown && !m_first) {
    m_first = people;
    return {};
  }
  start(isKnown ? m_options.lookAhead.value_or(0.0) : lookAhead(people));
  std::vector<FrameGroups> decided =
      m_first ? m_finder->next(*m_first) : std::vector<FrameGroups>();
  const auto more = m_finder->next(people);
  decided.insert(decided.end(), more.begin(), more.end());
  return describe(decided);
}

RunSteps GroupRun::finish() {
  RunSteps steps;
  if (!m_finder) {
    start(0.0);
    if (m_first) {
      steps = describe(m_finder->next(*m_first));
    }
  }
  RunSteps rest = describe(m_finder->finish());
  std::move(rest.begin(), rest.end(), std::back_inserter(steps));
  return steps;
}

RunStep GroupRun::stepOf(const InputFrame& frame) const {
  RunStep step;
  step.source = GroupSource::evidence;
  addInput(frame, step);
  if (!m_options.keepsImages) {
    step.image.reset();
  } else if (step.image && m_options.processDrawsOnImages) {
    step.image = QSharedPointer<kelDataImage>::create(step.image->mat().clone());
  }
  return step;
}

/// The seconds that the process waits, told by how far the first two frames are apart.
double GroupRun::lookAhead(const PeopleFrame& second) const {
  const double step =
      m_first->time && second.time ? *second.time - *m_first->time : ticks::usualLength;
  return std::min(m_options.delay * step, usefulLookAhead);
}

void GroupRun::start(double lookAhead) {
  m_finder.emplace(m_options.model, lookAhead);
}

RunSteps GroupRun::describe(const std::vector<FrameGroups>& decided) {
  RunSteps steps;
  steps.reserve(decided.size());
  for (const FrameGroups& frame : decided) {
    steps.push_back(describe(frame));
  }
  return steps;
}

RunStep GroupRun::describe(const FrameGroups& decided) {
  RunStep step = std::move(m_noted.front());
  m_noted.pop_front();
  step.groups.reserve(decided.groups.size());
  for (const FoundGroup& group : decided.groups) {
    step.groups.push_back(toRunGroup(group));
  }
  placeMembers(step);
  return step;
}

std::vector<std::uint32_t> aloneIn(const RunStep& step) {
  std::vector<std::uint32_t> together;
  together.reserve(step.persons.size());
  for (const RunGroup& group : step.groups) {
    for (const RunMember& member : group.members) {
      together.push_back(member.person.value_or(0));
    }
  }
  std::sort(together.begin(), together.end());
  std::vector<std::uint32_t> alone;
  alone.reserve(step.persons.size());
  auto member = together.begin();
  for (const RunPerson& person : step.persons) {
    member = std::find_if(member, together.end(), [&person](auto id) { return id >= person.id; });
    if (member == together.end() || *member != person.id) {
      alone.push_back(person.id);
    }
  }
  return alone;
}

FrameGroups toFrameGroups(const RunStep& step) {
  FrameGroups groups{step.inputFrame.value_or(0), step.time, {}, aloneIn(step)};
  groups.groups.reserve(step.groups.size());
  for (const RunGroup& group : step.groups) {
    FoundGroup& found = groups.groups.emplace_back();
    found.id = group.id;
    found.members.reserve(group.members.size());
    for (const RunMember& member : group.members) {
      found.members.push_back(member.person.value_or(0));
    }
    found.since = group.since.value_or(0);
    const cv::Point3d at = group.position.value_or(cv::Point3f());
    found.position = {at.x, at.y};
    found.confidence = group.confidence.value_or(0.0);
    found.from = group.from;
  }
  return groups;
}

}  // namespace grouptracker
