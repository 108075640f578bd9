#include "host/people/ObservationTable.h"

#include "host/base/PersonNames.h"

#include <fmt/format.h>

#include <algorithm>

namespace grouptracker {

namespace {

constexpr std::int64_t longestGap = 10'000'000;     // steps; four days at 30 frames per second
constexpr std::size_t differentDifferences = 4096;  // that are counted, for bounded memory

bool isRepeated(const ObservationRow& a, const ObservationRow& b) {
  return a.frame == b.frame && a.observation.person == b.observation.person;
}

using Differences = std::map<std::int64_t, std::uint64_t>;  // counts by difference

std::int64_t mostFrequent(const Differences& differences) {
  const auto most =
      std::max_element(differences.begin(), differences.end(),
                       [](const auto& a, const auto& b) { return a.second < b.second; });
  return most == differences.end() ? 1 : most->first;
}

/// The median. Of times that are not quite regular no difference is frequent.
std::int64_t middle(const Differences& differences) {
  std::uint64_t all = 0;
  for (const auto& [difference, count] : differences) {
    all += count;
  }
  std::uint64_t below = 0;
  for (const auto& [difference, count] : differences) {
    below += count;
    if (2 * below >= all) {
      return difference;
    }
  }
  return 1;
}

}  // namespace

void ObservationTable::add(std::int64_t frame, const Observation& observation, std::uint64_t line) {
  m_rows.add({frame, line, observation});
  cover(frame);
}

void ObservationTable::cover(std::int64_t frame) {
  m_finalFrame = m_firstFrame ? std::max(m_finalFrame, frame) : frame;
  m_firstFrame = m_firstFrame ? std::min(*m_firstFrame, frame) : frame;
}

void ObservationTable::setImages(std::filesystem::path folder, std::string extension) {
  m_imageFolder = std::move(folder);
  m_imageExtension = std::move(extension);
}

void ObservationTable::finish() {
  m_rows.finish();
  const Differences differences = examineRows();
  m_frameStep = m_hasTimes ? middle(differences) : mostFrequent(differences);
  countSteps();
  restart();
}

bool ObservationTable::next(ObservationStep& step) {
  if (m_stepsLeft > 0) {
    --m_stepsLeft;
    startStep(m_nextFrame, step);
    return true;
  }
  if (!m_ahead) {
    return false;
  }
  startStep(m_ahead->frame, step);
  ObservationRow row = *m_ahead;
  const std::int64_t frame = row.frame;
  for (m_ahead.reset(); row.frame == frame;) {
    // A person seen twice was reported before; whoever reads on gets the first.
    if (step.observations.empty() || step.observations.back().person != row.observation.person) {
      step.observations.push_back(row.observation);
    }
    if (!m_rows.next(row)) {
      m_stepsLeft = stepsToTheEnd(frame);
      return true;
    }
  }
  m_ahead = row;
  m_stepsLeft = static_cast<std::uint64_t>(stepsBetween(frame, row.frame) - 1);
  return true;
}

std::optional<double> ObservationTable::rate() const {
  if (!m_hasTimes || m_totalSteps < 2) {
    return std::nullopt;
  }
  return static_cast<double>(m_totalSteps - 1) * ticksPerSecond /
         static_cast<double>(m_finalFrame - *m_firstFrame);
}

std::string ObservationTable::momentText(std::int64_t frame) const {
  return m_hasTimes ? fmt::format("{} s", static_cast<double>(frame) / ticksPerSecond)
                    : fmt::format("frame {}", frame);
}

void ObservationTable::visit(const std::function<void(const ObservationRow&)>& look) {
  m_rows.rewind();
  for (ObservationRow row; m_rows.next(row);) {
    look(row);
  }
  restart();
}

void ObservationTable::startStep(std::int64_t frame, ObservationStep& step) {
  step = ObservationStep();
  step.frame = frame;
  if (m_hasTimes) {
    // Counted on from the first, since the times of a tracker are never quite regular.
    step.frame =
        (*m_firstFrame + m_frameStep / 2) / m_frameStep + static_cast<std::int64_t>(m_steps);
    step.time = static_cast<double>(frame) / ticksPerSecond;
  }
  ++m_steps;
  step.place.file = m_name;
  if (m_ahead) {
    step.place.line = m_ahead->line;
  }
  if (!m_imageFolder.empty()) {
    step.imageFile = m_imageFolder / fmt::format("{:06}{}", frame, m_imageExtension);
  }
  m_nextFrame = frame + m_frameStep;
}

ObservationTable::Differences ObservationTable::examineRows() {
  Differences differences;
  ObservationRow earlier;
  bool isFirst = true;
  for (ObservationRow row; m_rows.next(row); isFirst = false, earlier = row) {
    if (isFirst) {
      continue;
    }
    if (isRepeated(earlier, row)) {
      m_onProblem({m_name, row.line,
                   fmt::format("person {} is observed twice at {}, first on line {}",
                               PersonNames::ofProgram().textOf(row.observation.person),
                               momentText(row.frame), earlier.line)});
    }
    const std::int64_t difference = row.frame - earlier.frame;
    if (difference > 0 &&
        (differences.size() < differentDifferences || differences.contains(difference))) {
      ++differences[difference];
    }
  }
  return differences;
}

void ObservationTable::countSteps() {
  m_rows.rewind();
  std::int64_t last = m_firstFrame.value_or(0);
  m_totalSteps = m_firstFrame ? 1 : 0;
  for (ObservationRow row; m_rows.next(row); last = row.frame) {
    if (isJump(row.frame - last)) {
      m_onProblem({m_name, row.line,
                   m_hasTimes
                       ? fmt::format("the time jumps from {} to {}", momentText(last),
                                     momentText(row.frame))
                       : fmt::format("the frame number jumps from {} to {}", last, row.frame)});
    }
    m_totalSteps += static_cast<std::uint64_t>(stepsBetween(last, row.frame));
  }
  if (isJump(m_finalFrame - last)) {
    m_onProblem({m_name, fmt::format("nobody is seen from frame {} to {}", last, m_finalFrame)});
  }
  m_totalSteps += stepsToTheEnd(last);
}

void ObservationTable::restart() {
  m_steps = 0;
  m_rows.rewind();
  ObservationRow row;
  m_ahead.reset();
  m_stepsLeft = 0;
  if (m_rows.next(row)) {
    m_ahead = row;
    m_stepsLeft = static_cast<std::uint64_t>(stepsBetween(*m_firstFrame, row.frame));
    m_nextFrame = row.frame - static_cast<std::int64_t>(m_stepsLeft) * m_frameStep;
  } else if (m_firstFrame) {
    m_nextFrame = *m_firstFrame;
    m_stepsLeft = stepsToTheEnd(*m_firstFrame) + 1;
  }
}

// A gap that is no multiple of the step is rounded, so that time goes on at its usual pace. Whoever
// reads on behind a jump has been told of it and need not live through the time of a typing error.
std::int64_t ObservationTable::stepsBetween(std::int64_t earlier, std::int64_t later) const {
  const std::int64_t difference = later - earlier;
  if (difference == 0 || isJump(difference)) {
    return difference == 0 ? 0 : 1;
  }
  return std::max<std::int64_t>(1, (difference + m_frameStep / 2) / m_frameStep);
}

std::uint64_t ObservationTable::stepsToTheEnd(std::int64_t last) const {
  const std::int64_t difference = m_finalFrame - last;
  return isJump(difference) ? 0 : static_cast<std::uint64_t>(difference / m_frameStep);
}

bool ObservationTable::isJump(std::int64_t difference) const {
  return difference / m_frameStep > longestGap;
}

}  // namespace grouptracker
