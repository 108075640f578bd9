#include "host/people/ObservationTable.h"

#include <fmt/format.h>

#include <algorithm>

namespace grouptracker {

namespace {

constexpr std::int64_t longestGap = 10'000'000;     // steps; four days at 30 frames per second
constexpr std::size_t differentDifferences = 4096;  // that are counted, for bounded memory

bool isRepeated(const ObservationRow& a, const ObservationRow& b) {
  return a.frame == b.frame && a.observation.person == b.observation.person;
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
  const auto most =
      std::max_element(differences.begin(), differences.end(),
                       [](const auto& a, const auto& b) { return a.second < b.second; });
  m_frameStep = most == differences.end() ? 1 : most->first;
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
  for (m_ahead.reset(); row.frame == step.frame;) {
    // A person seen twice was reported before; whoever reads on gets the first.
    if (step.observations.empty() || step.observations.back().person != row.observation.person) {
      step.observations.push_back(row.observation);
    }
    if (!m_rows.next(row)) {
      m_stepsLeft = static_cast<std::uint64_t>((m_finalFrame - step.frame) / m_frameStep);
      return true;
    }
  }
  m_ahead = row;
  m_stepsLeft = static_cast<std::uint64_t>(stepsBetween(step.frame, row.frame) - 1);
  return true;
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
  step.place = m_ahead ? fmt::format("{}:{}", m_name, m_ahead->line) : m_name;
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
                   fmt::format("person {} is observed twice at frame {}, first on line {}",
                               row.observation.person, row.frame, earlier.line)});
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
    if (stepsBetween(last, row.frame) > longestGap) {
      m_onProblem(
          {m_name, row.line, fmt::format("the frame number jumps from {} to {}", last, row.frame)});
    }
    m_totalSteps += static_cast<std::uint64_t>(stepsBetween(last, row.frame));
  }
  const std::int64_t after = (m_finalFrame - last) / m_frameStep;
  if (after > longestGap) {
    m_onProblem({m_name, fmt::format("nobody is seen from frame {} to {}", last, m_finalFrame)});
  }
  m_totalSteps += static_cast<std::uint64_t>(after);
}

void ObservationTable::restart() {
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
    m_stepsLeft = static_cast<std::uint64_t>(m_finalFrame - *m_firstFrame) + 1;
  }
}

// A gap that is no multiple of the step is rounded, so that time goes on at its usual pace.
std::int64_t ObservationTable::stepsBetween(std::int64_t earlier, std::int64_t later) const {
  const std::int64_t difference = later - earlier;
  return difference == 0 ? 0
                         : std::max<std::int64_t>(1, (difference + m_frameStep / 2) / m_frameStep);
}

}  // namespace grouptracker
