#include "GroupTruth.h"

#include "Togetherness.h"

const Grouping& GroupTruth::at(std::int64_t frame) const {
  static const Grouping none;
  if (!isPerFrame()) {
    return m_always;
  }
  const auto groups = m_byFrame.find(frame);
  return groups == m_byFrame.end() ? none : groups->second;
}

Grouping GroupTruth::over(const std::vector<std::int64_t>& frames) const {
  if (!isPerFrame()) {
    return m_always;
  }
  Togetherness together;
  for (const std::int64_t frame : frames) {
    together.add(at(frame), {});
  }
  return together.ofMany(frames.size() / 2 + 1);
}

Grouping GroupTruth::whole() const {
  std::vector<PersonGroup> lists = m_always;
  for (const auto& [frame, groups] : m_byFrame) {
    lists.insert(lists.end(), groups.begin(), groups.end());
  }
  return joinOverlapping(lists);
}
