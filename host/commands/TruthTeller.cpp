#include "host/commands/TruthTeller.h"

#include "host/evaluation/ScoredSteps.h"

#include <algorithm>
#include <vector>

namespace grouptracker {

void TruthTeller::tell(const RunStep& step, ReportData& data) {
  if (!step.inputFrame || !m_truth.knows(*step.inputFrame)) {
    return;
  }
  const Grouping& whole = m_truth.at(*step.inputFrame);
  const GroupIds& ids = m_truth.idsAt(*step.inputFrame);
  const std::vector<Person> inView = personsOf(step);
  std::vector<TrueGroup> groups;
  Grouping seen;
  for (std::size_t i = 0; i < whole.size(); ++i) {
    for (const PersonGroup& group : restrictTo({whole[i]}, inView)) {
      groups.push_back({ids.empty() ? idOf(whole[i]) : ids[i], group});
      seen.push_back(group);
    }
  }
  std::sort(seen.begin(), seen.end());
  data.addTruth(*step.inputFrame, groups, groupingOf(step) == seen);
}

/// The same for the same persons.
std::uint32_t TruthTeller::idOf(const PersonGroup& group) {
  return m_ids.emplace(group, static_cast<std::uint32_t>(m_ids.size())).first->second;
}

}  // namespace grouptracker
