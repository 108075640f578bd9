#include "host/report/ReportData.h"

#include "host/base/PersonNames.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace grouptracker {

namespace {

constexpr double centimetres = 100.0;  // in a metre
constexpr std::uint32_t noGroup = std::numeric_limits<std::uint32_t>::max();

/// Whole centimetres; what is not a place on earth becomes the nearest that fits.
std::int32_t rounded(float metres) {
  constexpr double farthest = 1e9;
  const double value = std::isfinite(metres) ? metres * centimetres : 0.0;
  return static_cast<std::int32_t>(std::lround(std::clamp(value, -farthest, farthest)));
}

bool fitsStep(std::int32_t from, std::int32_t to) {
  const std::int64_t step = std::int64_t{to} - from;
  return std::abs(step) <= std::numeric_limits<std::int16_t>::max();
}

}  // namespace

bool ReportData::addFrame(std::int64_t inputFrame, const std::vector<RunPerson>& persons) {
  const bool isEmpty = std::none_of(persons.begin(), persons.end(),
                                    [](const RunPerson& person) { return person.seen; });
  m_emptyFrames = isEmpty ? m_emptyFrames + 1 : 0;
  if (m_emptyFrames > longestGap) {
    leaveOut(inputFrame);
    return false;
  }
  const auto frame = static_cast<std::uint32_t>(m_frameNumbers.size());
  m_indexOf.emplace(inputFrame, frame);
  m_frameNumbers.push_back(static_cast<double>(inputFrame));
  m_isDecided.push_back(0);
  std::map<std::uint32_t, Run> now;
  for (const RunPerson& person : persons) {
    if (person.seen) {
      addPlace(frame, person.id, person.seen->ground, now);
      m_turn.add(person);
    }
  }
  for (const auto& [person, run] : m_openRuns) {
    endRun(run);
  }
  m_openRuns = std::move(now);
  return true;
}

void ReportData::leaveOut(std::int64_t inputFrame) {
  const auto frame = static_cast<std::uint32_t>(m_frameNumbers.size() - 1);
  if (!m_gaps.empty() && m_gaps.rbegin()->second.frame == frame) {
    m_gaps.rbegin()->second.lastLeftOut = inputFrame;
  } else {
    m_gaps.emplace_hint(m_gaps.end(), inputFrame, Gap{frame, inputFrame});
  }
}

std::optional<std::uint32_t> ReportData::indexOf(std::int64_t inputFrame) const {
  if (const auto shown = m_indexOf.find(inputFrame); shown != m_indexOf.end()) {
    return shown->second;
  }
  const auto behind = m_gaps.upper_bound(inputFrame);
  const bool isLeftOut =
      behind != m_gaps.begin() && inputFrame <= std::prev(behind)->second.lastLeftOut;
  return isLeftOut ? std::optional(std::prev(behind)->second.frame) : std::nullopt;
}

void ReportData::addPlace(std::uint32_t frame, std::uint32_t person, const cv::Point2f& place,
                          std::map<std::uint32_t, Run>& now) {
  if (now.contains(person)) {
    return;
  }
  const std::int32_t x = rounded(place.x);
  const std::int32_t y = rounded(place.y);
  auto open = m_openRuns.extract(person);
  if (open && (!fitsStep(open.mapped().lastX, x) || !fitsStep(open.mapped().lastY, y))) {
    endRun(open.mapped());
    open = {};
  }
  Run run = open ? std::move(open.mapped()) : Run{person, frame, x, y, x, y, {}, {}};
  run.stepX.push_back(static_cast<std::int16_t>(x - run.lastX));
  run.stepY.push_back(static_cast<std::int16_t>(y - run.lastY));
  run.lastX = x;
  run.lastY = y;
  now.emplace(person, std::move(run));
}

void ReportData::endRun(const Run& run) {
  m_runPerson.push_back(run.person);
  m_runStart.push_back(run.start);
  m_runLength.push_back(static_cast<std::uint32_t>(run.stepX.size()));
  m_runX.push_back(run.x);
  m_runY.push_back(run.y);
  m_stepX.insert(m_stepX.end(), run.stepX.begin(), run.stepX.end());
  m_stepY.insert(m_stepY.end(), run.stepY.begin(), run.stepY.end());
}

bool ReportData::addGroups(const RunStep& step) {
  if (!step.inputFrame) {
    return true;  // nothing is reported yet
  }
  const auto index = indexOf(*step.inputFrame);
  if (!index) {
    return false;
  }
  m_isDecided[*index] = 1;
  m_colours.add(step);
  m_tree.add(step);
  for (const RunGroup& group : step.groups) {
    m_beliefs.add(*index, group);
    for (const RunMember& member : group.members) {
      if (group.isVisible && member.person) {
        m_members.add(*index, {group.id, *member.person});
      }
    }
  }
  for (const TrackedEvent& event : step.events) {
    addEvent(*index, event);
  }
  return true;
}

void ReportData::Beliefs::add(std::uint32_t frame, const RunGroup& group) {
  if (group.since) {
    since.emplace(group.id, static_cast<std::int32_t>(*group.since));
  }
  if (!group.confidence) {
    return;
  }
  constexpr double percent = 100.0;
  const auto now =
      static_cast<std::uint8_t>(std::lround(percent * std::clamp(*group.confidence, 0.0, 1.0)));
  const auto [known, isNew] = last.try_emplace(group.id, now);
  if (isNew || known->second != now) {
    known->second = now;
    groups.push_back(group.id);
    frames.push_back(frame);
    percents.push_back(now);
  }
}

void ReportData::Spans::add(std::uint32_t frame, const Membership& membership) {
  const auto [span, isNew] = open.try_emplace(membership, frame, frame);
  auto& [first, last] = span->second;
  if (!isNew && last + 1 < frame) {
    end(membership, first, last);
    first = frame;
  }
  last = frame;
}

void ReportData::Spans::end(const Membership& membership, std::uint32_t first, std::uint32_t last) {
  groups.push_back(membership.first);
  persons.push_back(membership.second);
  from.push_back(first);
  to.push_back(last);
}

void ReportData::Spans::endAll() {
  for (const auto& [membership, span] : open) {
    end(membership, span.first, span.second);
  }
  open.clear();
}

void ReportData::addEvent(std::uint32_t frame, const TrackedEvent& event) {
  m_eventKind.push_back(static_cast<std::uint8_t>(event.kind));
  m_eventFrame.push_back(frame);
  m_eventGroup.push_back(event.group);
  m_eventOther.push_back(event.other.value_or(noGroup));
  m_eventPersons.insert(m_eventPersons.end(), event.persons.begin(), event.persons.end());
  m_eventPersonsEnd.push_back(static_cast<std::uint32_t>(m_eventPersons.size()));
}

bool ReportData::addTruth(std::int64_t inputFrame, const std::vector<TrueGroup>& groups,
                          bool isRight) {
  const auto index = indexOf(inputFrame);
  if (!index) {
    return false;
  }
  if (!m_verdicts) {
    m_verdicts.emplace();
  }
  m_verdicts->resize(frames(), static_cast<std::uint8_t>(Verdict::unknown));
  (*m_verdicts)[*index] = static_cast<std::uint8_t>(isRight ? Verdict::right : Verdict::wrong);
  for (const TrueGroup& group : groups) {
    for (const std::uint32_t person : group.persons) {
      m_truth.add(*index, {group.id, person});
    }
  }
  return true;
}

std::set<std::uint32_t> ReportData::namedPersons() const {
  std::set<std::uint32_t> named;
  for (const auto* const persons : {&m_runPerson, &m_members.persons, &m_truth.persons}) {
    std::copy_if(persons->begin(), persons->end(), std::inserter(named, named.end()),
                 [](std::uint32_t person) { return person >= PersonNames::firstAlias; });
  }
  return named;
}

void ReportData::fill(ReportBody& body) {
  for (const auto& [person, run] : m_openRuns) {
    endRun(run);
  }
  m_openRuns.clear();
  m_members.endAll();
  m_truth.endAll();
  body.add("frameNumbers", m_frameNumbers);
  body.add("runPerson", m_runPerson);
  body.add("runStart", m_runStart);
  body.add("runLength", m_runLength);
  body.add("runX", m_runX);
  body.add("runY", m_runY);
  body.add("stepX", m_stepX);
  body.add("stepY", m_stepY);
  body.add("isDecided", m_isDecided);
  body.add("memberGroup", m_members.groups);
  body.add("memberPerson", m_members.persons);
  body.add("memberFrom", m_members.from);
  body.add("memberTo", m_members.to);
  body.add("eventKind", m_eventKind);
  body.add("eventFrame", m_eventFrame);
  body.add("eventGroup", m_eventGroup);
  body.add("eventOther", m_eventOther);
  body.add("eventPersons", m_eventPersons);
  body.add("eventPersonsEnd", m_eventPersonsEnd);
  fillGroups(body);
  if (m_verdicts) {
    body.add("verdicts", *m_verdicts);
    body.add("truthGroup", m_truth.groups);
    body.add("truthPerson", m_truth.persons);
    body.add("truthFrom", m_truth.from);
    body.add("truthTo", m_truth.to);
  }
}

// Bars in the same lane of the drawing shall not touch.
void ReportData::fillGroups(ReportBody& body) const {
  constexpr std::int64_t mostGaps = 200;  // side by side
  const std::int64_t span =
      m_frameNumbers.empty()
          ? 0
          : static_cast<std::int64_t>(m_frameNumbers.back() - m_frameNumbers.front());
  std::vector<std::uint32_t> ids;
  std::vector<std::uint32_t> lanes;
  std::vector<std::uint8_t> colours;
  for (const auto& [group, lane] :
       m_tree.lanes(1 + span / mostGaps, [](std::uint32_t) { return std::int64_t{1}; })) {
    ids.push_back(group);
    lanes.push_back(static_cast<std::uint32_t>(lane));
    colours.push_back(static_cast<std::uint8_t>(m_colours.indexOf(group)));
  }
  std::vector<std::uint32_t> sinceGroups;
  std::vector<std::int32_t> sinceFrames;
  for (const auto& [group, frame] : m_beliefs.since) {
    sinceGroups.push_back(group);
    sinceFrames.push_back(frame);
  }
  body.add("sinceGroup", sinceGroups);
  body.add("sinceFrame", sinceFrames);
  body.add("beliefGroup", m_beliefs.groups);
  body.add("beliefFrame", m_beliefs.frames);
  body.add("beliefPercent", m_beliefs.percents);
  body.add("groupId", ids);
  body.add("groupLane", lanes);
  body.add("groupColour", colours);
}

}  // namespace grouptracker
