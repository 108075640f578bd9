#include "ObservationTable.h"

#include "InputError.h"

#include <algorithm>
#include <tuple>

void ObservationTable::add(std::int64_t frame, const Observation& observation, std::uint64_t line) {
  m_rows.push_back({frame, line, observation});
}

void ObservationTable::finish() {
  std::stable_sort(m_rows.begin(), m_rows.end(), [](const Row& a, const Row& b) {
    return std::tie(a.frame, a.observation.person) < std::tie(b.frame, b.observation.person);
  });
  refuseRepeatedPersons();
  m_frameStep = mostFrequentDifference();
  m_totalSteps = m_rows.empty() ? 0 : 1;
  for (std::size_t i = 1; i < m_rows.size(); ++i) {
    m_totalSteps += static_cast<std::uint64_t>(stepsBetween(m_rows[i - 1].frame, m_rows[i].frame));
  }
}

bool ObservationTable::next(ObservationStep& step) {
  if (m_nextRow == m_rows.size()) {
    return false;
  }
  const Row& first = m_rows[m_nextRow];
  step = ObservationStep();
  step.place = m_name + ":" + std::to_string(first.line);
  if (m_missingSteps > 0) {
    --m_missingSteps;
    step.frame = m_lastFrame += m_frameStep;
    return true;
  }
  step.frame = m_lastFrame = first.frame;
  for (; m_nextRow < m_rows.size() && m_rows[m_nextRow].frame == step.frame; ++m_nextRow) {
    step.observations.push_back(m_rows[m_nextRow].observation);
  }
  if (m_nextRow < m_rows.size()) {
    m_missingSteps = stepsBetween(step.frame, m_rows[m_nextRow].frame) - 1;
  }
  return true;
}

std::vector<cv::Point2d> ObservationTable::positions() const {
  std::vector<cv::Point2d> positions;
  for (const Row& row : m_rows) {
    if (row.observation.position) {
      positions.push_back(*row.observation.position);
    }
  }
  return positions;
}

void ObservationTable::refuseRepeatedPersons() const {
  const auto repeated =
      std::adjacent_find(m_rows.begin(), m_rows.end(), [](const Row& a, const Row& b) {
        return a.frame == b.frame && a.observation.person == b.observation.person;
      });
  if (repeated != m_rows.end()) {
    const Row& second = *std::next(repeated);
    throw InputError(m_name, second.line,
                     "person " + std::to_string(second.observation.person) +
                         " is observed twice at frame " + std::to_string(second.frame) +
                         ", first on line " + std::to_string(repeated->line));
  }
}

std::int64_t ObservationTable::mostFrequentDifference() const {
  std::map<std::int64_t, std::uint64_t> counts;  // by difference
  for (std::size_t i = 1; i < m_rows.size(); ++i) {
    const std::int64_t difference = m_rows[i].frame - m_rows[i - 1].frame;
    if (difference > 0) {
      ++counts[difference];
    }
  }
  const auto most =
      std::max_element(counts.begin(), counts.end(),
                       [](const auto& a, const auto& b) { return a.second < b.second; });
  return most == counts.end() ? 1 : most->first;
}

// A gap that is no multiple of the step is rounded, so that time goes on at its usual pace.
std::int64_t ObservationTable::stepsBetween(std::int64_t earlier, std::int64_t later) const {
  const std::int64_t difference = later - earlier;
  return difference == 0 ? 0
                         : std::max<std::int64_t>(1, (difference + m_frameStep / 2) / m_frameStep);
}
