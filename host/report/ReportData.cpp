#include "host/report/ReportData.h"

#include <algorithm>
#include <cmath>
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

void ReportData::addFrame(std::int64_t inputFrame, const std::vector<RunPerson>& persons) {
  const auto frame = static_cast<std::uint32_t>(m_frameNumbers.size());
  m_indexOf.emplace(inputFrame, frame);
  m_frameNumbers.push_back(static_cast<std::int32_t>(inputFrame));
  std::map<std::uint32_t, Run> now;
  for (const RunPerson& person : persons) {
    if (person.seen) {
      addPlace(frame, person.id, person.seen->ground, now);
    }
  }
  for (const auto& [person, run] : m_openRuns) {
    endRun(run);
  }
  m_openRuns = std::move(now);
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
  const auto index = m_indexOf.find(step.inputFrame.value_or(0));
  if (!step.inputFrame) {
    return true;  // nothing is reported yet
  }
  if (index == m_indexOf.end()) {
    return false;
  }
  for (const RunGroup& group : step.groups) {
    for (const RunMember& member : group.members) {
      if (group.isVisible && member.person) {
        addMember(index->second, {group.id, *member.person});
      }
    }
  }
  for (const TrackedEvent& event : step.events) {
    addEvent(index->second, event);
  }
  return true;
}

void ReportData::addMember(std::uint32_t frame, const Membership& membership) {
  const auto [open, isNew] = m_openSpans.try_emplace(membership, frame, frame);
  auto& [first, last] = open->second;
  if (!isNew && last + 1 < frame) {
    endSpan(membership, first, last);
    first = frame;
  }
  last = frame;
}

void ReportData::endSpan(const Membership& membership, std::uint32_t first, std::uint32_t last) {
  m_memberGroup.push_back(membership.first);
  m_memberPerson.push_back(membership.second);
  m_memberFrom.push_back(first);
  m_memberTo.push_back(last);
}

void ReportData::addEvent(std::uint32_t frame, const TrackedEvent& event) {
  m_eventKind.push_back(static_cast<std::uint8_t>(event.kind));
  m_eventFrame.push_back(frame);
  m_eventGroup.push_back(event.group);
  m_eventOther.push_back(event.other.value_or(noGroup));
  m_eventPersons.insert(m_eventPersons.end(), event.persons.begin(), event.persons.end());
  m_eventPersonsEnd.push_back(static_cast<std::uint32_t>(m_eventPersons.size()));
}

bool ReportData::markWrong(std::int64_t inputFrame) {
  const auto index = m_indexOf.find(inputFrame);
  if (index == m_indexOf.end()) {
    return false;
  }
  m_wrong->resize(std::max<std::size_t>(m_wrong->size(), index->second + 1), 0);
  (*m_wrong)[index->second] = 1;
  return true;
}

void ReportData::fill(ReportBody& body) {
  for (const auto& [person, run] : m_openRuns) {
    endRun(run);
  }
  m_openRuns.clear();
  for (const auto& [membership, span] : m_openSpans) {
    endSpan(membership, span.first, span.second);
  }
  m_openSpans.clear();
  body.add("frameNumbers", m_frameNumbers);
  body.add("runPerson", m_runPerson);
  body.add("runStart", m_runStart);
  body.add("runLength", m_runLength);
  body.add("runX", m_runX);
  body.add("runY", m_runY);
  body.add("stepX", m_stepX);
  body.add("stepY", m_stepY);
  body.add("memberGroup", m_memberGroup);
  body.add("memberPerson", m_memberPerson);
  body.add("memberFrom", m_memberFrom);
  body.add("memberTo", m_memberTo);
  body.add("eventKind", m_eventKind);
  body.add("eventFrame", m_eventFrame);
  body.add("eventGroup", m_eventGroup);
  body.add("eventOther", m_eventOther);
  body.add("eventPersons", m_eventPersons);
  body.add("eventPersonsEnd", m_eventPersonsEnd);
  if (m_wrong) {
    body.add("wrong", *m_wrong);
  }
}

}  // namespace grouptracker
