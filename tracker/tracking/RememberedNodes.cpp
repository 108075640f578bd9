#include "tracker/tracking/RememberedNodes.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::size_t smallChange = 1000;  // ids; so few are not worth a walk

}  // namespace

QSharedPointer<MetaLPO> RememberedNodes::find(int id) const {
  const auto entry = m_nodes.find(id);
  return entry == m_nodes.end() ? QSharedPointer<MetaLPO>() : entry->second;
}

MetaLPO* RememberedNodes::node(int id) const {
  const auto entry = m_nodes.find(id);
  return entry == m_nodes.end() ? nullptr : entry->second.data();
}

void RememberedNodes::add(const QSharedPointer<MetaLPO>& mobile) {
  auto& place = m_nodes[mobile->getIdent()];
  if (place) {
    m_namesakes += place->hasNamesake() ? 0 : 1;
    place->setRemembered(false);
    place->setHasNamesake();
    mobile->setHasNamesake();
  }
  place = mobile;
  mobile->setRemembered(true);
  noteChange(mobile->getIdent());
}

void RememberedNodes::remove(int id) {
  const auto entry = m_nodes.find(id);
  if (entry != m_nodes.end()) {
    m_namesakes -= entry->second->hasNamesake() ? 1 : 0;
    entry->second->setRemembered(false);
    m_nodes.erase(entry);
    noteChange(id);
  }
}

void RememberedNodes::noteChange(int id) {
  m_changed.push_back(id);
  if (m_changed.size() > 2 * m_nodes.size() + smallChange) {
    inOrder();  // nobody walks; keep the list of changes short
  }
}

const std::vector<RememberedNodes::Entry>& RememberedNodes::inOrder() const {
  if (m_changed.empty()) {
    return m_ordered;
  }
  std::sort(m_changed.begin(), m_changed.end());
  m_changed.erase(std::unique(m_changed.begin(), m_changed.end()), m_changed.end());
  std::vector<Entry>& ordered = m_reordered;
  ordered.clear();
  auto old = m_ordered.begin();
  for (const int id : m_changed) {
    const auto end = std::lower_bound(
        old, m_ordered.end(), id, [](const Entry& entry, int wanted) { return entry.id < wanted; });
    ordered.insert(ordered.end(), old, end);
    old = end != m_ordered.end() && end->id == id ? end + 1 : end;
    if (MetaLPO* const current = node(id)) {
      ordered.push_back({id, current});
    }
  }
  ordered.insert(ordered.end(), old, m_ordered.end());
  m_ordered.swap(ordered);
  m_changed.clear();
  return m_ordered;
}

void RememberedNodes::fileLinks(const QSharedPointer<MetaLPO>& mobile) {
  if (mobile->getFatherLinks().empty()) {
    return;
  }
  int oldest = std::numeric_limits<int>::max();
  for (const auto& link : mobile->getFatherLinks()) {
    const MetaLPO* father = link.fatherNode();
    // A link to nobody is older than everything that is kept.
    oldest = std::min(oldest, father == nullptr ? std::numeric_limits<int>::min()
                                                : static_cast<int>(father->getFrame()));
  }
  m_byOldestFather[oldest].push_back(mobile);
}

void RememberedNodes::eraseOldLinks(int firstKeptFrame) {
  while (!m_byOldestFather.empty()) {
    const auto oldest = m_byOldestFather.begin();
    if (oldest->first >= firstKeptFrame && oldest->first != std::numeric_limits<int>::min()) {
      return;
    }
    const auto sons = std::move(oldest->second);
    m_byOldestFather.erase(oldest);
    for (const auto& entry : sons) {
      const auto son = entry.toStrongRef();
      if (son && son->isRemembered()) {
        son->eraseOldLinks(firstKeptFrame);
        fileLinks(son);
      }
    }
  }
}
