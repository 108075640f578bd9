#include "host/explain/DecisionLog.h"

#include <fmt/format.h>

namespace grouptracker {

namespace {

constexpr int splitGenerations = 5;  // how far back the tracker looks for another group

}  // namespace

// The best father counts first, then the strongest link to a member.
std::string DecisionLog::linkOf(std::int64_t mobile, int group) const {
  if (m_dumped == nullptr) {
    return {};
  }
  const auto own = m_dumped->find(mobile);
  if (own == m_dumped->end()) {
    return {};
  }
  const MobileDump::Link* best = nullptr;
  for (const MobileDump::Link& link : own->second.links) {
    const auto father = m_dumped->find(link.father);
    const bool leadsHere = father != m_dumped->end() && father->second.group == group;
    if (!leadsHere) {
      continue;
    }
    if (link.father == own->second.bestFather) {
      return fmt::format("through its best father {}, reliability {:g}", link.father,
                         link.reliability);
    }
    best = best == nullptr || link.reliability > best->reliability ? &link : best;
  }
  return best == nullptr ? std::string()
                         : fmt::format("through the link to {}, reliability {:g}", best->father,
                                       best->reliability);
}

// The dump shows the groups as they were before they merged.
std::string DecisionLog::sharedSon(const Listed& group, int other) const {
  if (m_dumped == nullptr) {
    return {};
  }
  std::map<std::int64_t, std::pair<std::int64_t, std::int64_t>> fathers;  // by son: of each group
  for (const auto& [id, mobile] : *m_dumped) {
    if (mobile.frame >= m_processedFrame && group.line.id == mobile.group) {
      fathers.try_emplace(mobile.bestSon, id, none).first->second.first = id;
    } else if (mobile.frame >= m_processedFrame && other == mobile.group) {
      fathers.try_emplace(mobile.bestSon, none, id).first->second.second = id;
    }
  }
  for (const auto& [son, pair] : fathers) {
    if (pair.first >= 0 && pair.second >= 0) {
      return son < 0 ? fmt::format("{} and {} both have no best son", pair.first, pair.second)
                     : fmt::format("{} and {} share the best son {}", pair.first, pair.second, son);
    }
  }
  return {};
}

std::string DecisionLog::ancestorOf(const Listed& group, int other) const {
  if (m_dumped == nullptr) {
    return {};
  }
  for (const std::int64_t member : group.line.mobiles) {
    auto mobile = m_dumped->find(member);
    for (int generation = 0; generation < splitGenerations && mobile != m_dumped->end();
         ++generation) {
      const std::int64_t father = mobile->second.bestFather;
      mobile = m_dumped->find(father);
      if (mobile != m_dumped->end() && mobile->second.group == other) {
        return fmt::format("{} descends from {} in {} generation{}", member, father, generation + 1,
                           generation == 0 ? "" : "s");
      }
    }
  }
  return {};
}

}  // namespace grouptracker
