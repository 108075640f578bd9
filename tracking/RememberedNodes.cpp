#include "RememberedNodes.h"

#include <algorithm>
#include <limits>

QSharedPointer<MetaLPO> RememberedNodes::find(int id) const {
  const auto entry = m_byId.find(id);
  return entry == m_byId.end() ? QSharedPointer<MetaLPO>() : entry->second;
}

MetaLPO* RememberedNodes::node(int id) const {
  const auto entry = m_index.find(id);
  return entry == m_index.end() ? nullptr : entry->second;
}

void RememberedNodes::add(const QSharedPointer<MetaLPO>& mobile) {
  auto& place = m_byId.try_emplace(m_byId.end(), mobile->getIdent())->second;
  if (place) {
    m_namesakes += place->hasNamesake() ? 0 : 1;
    place->setRemembered(false);
    place->setHasNamesake();
    mobile->setHasNamesake();
  }
  place = mobile;
  m_index[mobile->getIdent()] = mobile.data();
  mobile->setRemembered(true);
}

void RememberedNodes::remove(int id) {
  const auto entry = m_byId.find(id);
  if (entry != m_byId.end()) {
    m_namesakes -= entry->second->hasNamesake() ? 1 : 0;
    entry->second->setRemembered(false);
    m_index.erase(id);
    m_byId.erase(entry);
  }
}

void RememberedNodes::fileLinks(const QSharedPointer<MetaLPO>& mobile) {
  if (mobile->getFatherLinks().empty()) {
    return;
  }
  int oldest = std::numeric_limits<int>::max();
  for (const auto& link : mobile->getFatherLinks()) {
    const MetaLPO* father = link->fatherNode();
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
