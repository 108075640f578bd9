#pragma once

#include "host/evaluation/GroupTruth.h"

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace grouptracker {

/// Tells which true groups of several frames are the same one: those of one id, or where the truth
/// has no ids those of the same members.
class TrueIdentities {
 public:
  /// The true groups of which two persons and more are in view, those members, and which groups
  /// they are.
  std::vector<std::pair<std::size_t, PersonGroup>> presentAt(std::int64_t frame,
                                                             const GroupTruth& truth,
                                                             const std::vector<Person>& inView) {
    std::vector<std::pair<std::size_t, PersonGroup>> present;
    const Grouping& groups = truth.at(frame);
    for (std::size_t place = 0; place < groups.size(); ++place) {
      Grouping members = restrictTo({groups[place]}, inView);
      if (!members.empty()) {
        present.emplace_back(of(groups[place], truth.idsAt(frame), place),
                             std::move(members.front()));
      }
    }
    return present;
  }

 private:
  std::size_t of(const PersonGroup& group, const GroupIds& ids, std::size_t place) {
    const auto next = m_byMembers.size() + m_byId.size();
    return ids.empty() ? m_byMembers.try_emplace(group, next).first->second
                       : m_byId.try_emplace(ids[place], next).first->second;
  }

  std::map<PersonGroup, std::size_t> m_byMembers;
  std::map<std::uint32_t, std::size_t> m_byId;
};

}  // namespace grouptracker
