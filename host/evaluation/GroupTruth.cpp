#include "host/evaluation/GroupTruth.h"

#include "host/evaluation/Togetherness.h"

namespace grouptracker {

void GroupTruth::setAt(std::int64_t frame, Grouping groups, GroupIds ids) {
  m_byFrame[frame] = std::move(groups);
  m_idsByFrame[frame] = std::move(ids);
}

const GroupIds& GroupTruth::idsAt(std::int64_t frame) const {
  static const GroupIds none;
  const auto ids = m_idsByFrame.find(frame);
  return ids == m_idsByFrame.end() ? none : ids->second;
}

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

Grouping GroupTruth::over(const std::vector<std::int64_t>& frames,
                          const std::vector<Person>& persons) const {
  return restrictTo(isPerFrame() ? over(frames) : m_always, persons);
}

Grouping GroupTruth::whole() const {
  std::vector<PersonGroup> lists = m_always;
  for (const auto& [frame, groups] : m_byFrame) {
    lists.insert(lists.end(), groups.begin(), groups.end());
  }
  return joinOverlapping(lists);
}

}  // namespace grouptracker
