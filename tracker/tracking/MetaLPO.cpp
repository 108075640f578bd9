#include "tracker/tracking/MetaLPO.h"

#include "tracker/geometry/Util.h"
#include "tracker/tracking/GroupTracker.h"

#include <algorithm>
#include <utility>

double MetaLPO::recentLinkWeight = 0.0;

namespace {

// A stable sort; few elements, as the links of a node are, are sorted without an allocation.
template <typename Elements, typename Less>
void sortFew(Elements& elements, const Less& less) {
  constexpr int few = 16;
  const auto begin = elements.begin();
  const auto end = elements.end();
  if (end - begin > few) {
    std::stable_sort(begin, end, less);
    return;
  }
  for (auto next = begin; next != end; ++next) {
    std::rotate(std::upper_bound(begin, next, *next, less), next, next + 1);
  }
}

}  // namespace

MetaLPOLink::MetaLPOLink(const QSharedPointer<MetaLPO>& father, const QSharedPointer<MetaLPO>& son,
                         double reliability)
    : m_father(father),
      m_fatherId(father ? father->getIdent() : noId),
      m_son(son),
      m_reliability(reliability) {}

MetaLPO::MetaLPO(const QSharedPointer<kelDataLinkedPhysicalObject>& lpo, unsigned int frame)
    : m_ident(signedId(lpo->getIdent())),
      m_frame(frame),
      m_center(Util::getCenter3D(lpo->getPhysicalObject()->getBoundingBox3D())),
      m_baseCenter(Util::baseCenter3D(lpo->getPhysicalObject()->getBoundingBox3D())),
      m_type(lpo->getPhysicalObject()->getType()),
      m_lpo(lpo) {}

MetaLPO::MetaLPO(const MetaLPO& other)
    : m_ident(other.m_ident),
      m_frame(other.m_frame),
      m_groupId(other.m_groupId),
      m_bestFatherId(other.m_bestFatherId),
      m_bestSonId(other.m_bestSonId),
      m_bestSonScore(other.m_bestSonScore),
      m_speed(other.m_speed),
      m_speedSamples(other.m_speedSamples),
      m_bestFatherReliability(other.m_bestFatherReliability),
      m_center(other.m_center),
      m_baseCenter(other.m_baseCenter),
      m_type(other.m_type),
      m_lpo(other.m_lpo),
      m_chainLength(other.m_chainLength) {}

MetaLPO::~MetaLPO() {
  for (const unsigned int frame : m_sonFrames) {
    noteMotionAt(frame);
  }
}

void MetaLPO::noteMotionAt(unsigned int frame) const {
  if (m_motions) {
    m_motions->note(frame);
  }
}

void MetaLPO::sortLinks() {
  sortFew(m_fatherLinks, MetaLPOLink::compare_links);
}

void MetaLPO::resetLinks() {
  auto links = m_fatherLinks;
  links.clear();
}

void MetaLPO::eraseOldLinks(int firstKeptFrame) {
  std::erase_if(m_fatherLinks, [&](const MetaLPOLink& link) {
    const MetaLPO* father = link.fatherNode();
    if (father == nullptr) {
      return true;
    }
    if (static_cast<int>(father->m_frame) >= firstKeptFrame) {
      return false;
    }
    if (father->m_ident == m_bestFatherId) {
      loseBestFather();
    }
    return true;
  });
}

void MetaLPO::loseBestFather() {
  m_bestFatherId = noId;
  m_bestFather = WeakNode();
  noteMotionAt(m_frame);
}

// The links to known fathers, the most recent fathers first and those of one frame in the order of
// the links.
MetaLPO::Links MetaLPO::linksByRecentFather() const {
  Links links;
  for (const auto& link : m_fatherLinks) {
    if (link.fatherNode() != nullptr) {
      links.push_back(&link);
    }
  }
  sortFew(links, [](const MetaLPOLink* a, const MetaLPOLink* b) {
    return a->fatherNode()->m_frame > b->fatherNode()->m_frame;
  });
  return links;
}

unsigned int MetaLPO::computeBestFather() {
  if (m_bestFatherId != noId) {
    return unsignedId(m_bestFatherId);
  }
  const MetaLPOLink* winner = nullptr;
  double bestReliability = -1.0;
  for (const MetaLPOLink* link : linksByRecentFather()) {
    const double gap = static_cast<int>(m_frame - link->fatherNode()->m_frame);
    const double score =
        link->getReliability() * (100.0 - gap * GroupTracker::fatherDistanceWeight) / 100.0;
    // Compared with the winner's raw reliability, so an older father must beat it outright.
    if (score > bestReliability) {
      bestReliability = link->getReliability();
      winner = link;
    }
  }
  if (winner != nullptr) {
    overrideBestFather(winner->getFather(), bestReliability);
  }
  return unsignedId(m_bestFatherId);
}

QSharedPointer<MetaLPO> MetaLPO::getBestFather() const {
  if (m_bestFatherId == noId) {
    return QSharedPointer<MetaLPO>::create(*this);
  }
  return m_bestFather.share();
}

QSharedPointer<MetaLPO> MetaLPO::ancestor() const {
  auto father = m_bestFather.share();
  return father.data() == this ? QSharedPointer<MetaLPO>() : father;
}

void MetaLPO::overrideBestFather(const QSharedPointer<MetaLPO>& father, double reliability) {
  m_bestFather = WeakNode(father);
  m_bestFatherId = father->m_ident;
  m_bestFatherReliability = reliability;
  m_step = Util::motionVector3D(father->observation().getBoundingBox3D(),
                                observation().getBoundingBox3D());
  father->m_sonFrames.push_back(m_frame);
  noteMotionAt(m_frame);
}

QSharedPointer<MetaLPO> MetaLPO::getFather(unsigned int id) const {
  for (const auto& link : m_fatherLinks) {
    if (auto father = link.getFather(); father && father->m_ident == signedId(id)) {
      return father;
    }
  }
  return {};
}

const MetaLPOLink* MetaLPO::linkTo(int fatherId) const {
  for (const auto& link : m_fatherLinks) {
    if (link.leadsTo(fatherId)) {
      return &link;
    }
  }
  return nullptr;
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
