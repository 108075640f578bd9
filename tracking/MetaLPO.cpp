#include "MetaLPO.h"

#include <algorithm>
#include <functional>
#include <map>

#include "GroupTracker.h"

double MetaLPO::recentLinkWeight = 0.0;

MetaLPO::MetaLPO(const QSharedPointer<kelDataLinkedPhysicalObject>& lpo, unsigned int frame)
    : m_lpo(lpo), m_frame(frame) {}

MetaLPO::MetaLPO(const MetaLPO& other)
    : m_lpo(other.m_lpo),
      m_groupId(other.m_groupId),
      m_frame(other.m_frame),
      m_speed(other.m_speed),
      m_speedSamples(other.m_speedSamples),
      m_bestFatherId(other.m_bestFatherId),
      m_bestSonId(other.m_bestSonId),
      m_bestFatherReliability(other.m_bestFatherReliability),
      m_bestSonScore(other.m_bestSonScore),
      m_chainLength(other.m_chainLength) {}

MetaLPO::~MetaLPO() = default;

void MetaLPO::sortLinks() {
  std::stable_sort(m_fatherLinks.begin(), m_fatherLinks.end(), MetaLPOLink::compare_links);
}

void MetaLPO::resetLinks() {
  auto links = m_fatherLinks;
  for (auto& link : links) {
    link.clear();
  }
}

void MetaLPO::eraseOldLinks(int firstKeptFrame) {
  std::erase_if(m_fatherLinks, [&](const QSharedPointer<MetaLPOLink>& link) {
    const auto father = link->getFather();
    if (!father) {
      return true;
    }
    if (static_cast<int>(father->m_frame) >= firstKeptFrame) {
      return false;
    }
    if (father->getIdent() == m_bestFatherId) {
      m_bestFatherId = noId;
      m_bestFather.clear();
    }
    return true;
  });
}

unsigned int MetaLPO::computeBestFather() {
  if (m_bestFatherId != noId) {
    return static_cast<unsigned int>(m_bestFatherId);
  }
  std::map<unsigned int, std::vector<const MetaLPOLink*>, std::greater<>> linksByFatherFrame;
  for (const auto& link : m_fatherLinks) {
    if (const auto father = link->getFather()) {
      linksByFatherFrame[father->m_frame].push_back(link.data());
    }
  }
  double bestReliability = -1.0;
  for (const auto& [fatherFrame, links] : linksByFatherFrame) {
    for (const MetaLPOLink* link : links) {
      const double gap = static_cast<int>(m_frame - fatherFrame);
      const double score =
          link->getReliability() * (100.0 - gap * GroupTracker::fatherDistanceWeight) / 100.0;
      // Compared with the winner's raw reliability, so an older father must beat it outright.
      if (score > bestReliability) {
        bestReliability = link->getReliability();
        overrideBestFather(link->getFather(), bestReliability);
      }
    }
  }
  return static_cast<unsigned int>(m_bestFatherId);
}

QSharedPointer<MetaLPO> MetaLPO::getBestFather() const {
  if (m_bestFatherId == noId) {
    return QSharedPointer<MetaLPO>::create(*this);
  }
  return m_bestFather.toStrongRef();
}

QSharedPointer<MetaLPO> MetaLPO::ancestor() const {
  auto father = m_bestFather.toStrongRef();
  return father.data() == this ? QSharedPointer<MetaLPO>() : father;
}

void MetaLPO::overrideBestFather(const QSharedPointer<MetaLPO>& father, double reliability) {
  m_bestFather = father;
  m_bestFatherId = father->getIdent();
  m_bestFatherReliability = reliability;
}

QSharedPointer<MetaLPO> MetaLPO::getFather(unsigned int id) const {
  for (const auto& link : m_fatherLinks) {
    if (auto father = link->getFather(); father && father->m_lpo->getIdent() == id) {
      return father;
    }
  }
  return {};
}

double MetaLPO::linkReliability(int fatherId) const {
  for (const auto& link : m_fatherLinks) {
    if (const auto father = link->getFather(); father && father->getIdent() == fatherId) {
      return link->getReliability();
    }
  }
  return 0.0;
}

double MetaLPO::fatherScore(const QSharedPointer<kelDataLinkedPhysicalObject>& object,
                            unsigned int depth) const {
  if (depth == 0) {
    return 0.0;
  }
  double best = 0.0;
  for (const auto& link : object->getFatherLinks()) {
    const auto father = link->getFather();
    const double ancestry = father ? fatherScore(father, depth - 1) : 0.0;
    best = std::max(best,
                    link->getReliability() * recentLinkWeight + ancestry * (1 - recentLinkWeight));
  }
  return best;
}

QSharedPointer<MetaLPO> MetaLPO::descendant() const {
  auto son = m_bestSon.toStrongRef();
  return son.data() == this ? QSharedPointer<MetaLPO>() : son;
}
