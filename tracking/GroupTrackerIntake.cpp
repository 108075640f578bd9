#include <algorithm>
#include <cmath>
#include <iterator>
#include <unordered_map>

#include "Diagnostics.h"
#include "GroupTracker.h"
#include "Util.h"

namespace {

constexpr double lostChain = 0.0001;  // a chain less reliable than this starts anew

// The nodes of the recent past by mobile id, each with the best score of a son found so far. An id
// declared again has several nodes.
struct FatherScore {
  QSharedPointer<MetaLPO> father;
  double best = -1.0;
};
using FathersById = std::unordered_map<int, std::vector<FatherScore>>;

// A node takes a mobile of the current frame for its son only when it is of the frame just before.
bool mayBeSon(unsigned int fatherFrame, unsigned int sonFrame, unsigned int currentFrame) {
  if (sonFrame == currentFrame) {
    return fatherFrame == currentFrame - 1;
  }
  return fatherFrame < sonFrame;
}

double sonScore(const MetaLPOLink& link, const MetaLPO& father, const MetaLPO& son) {
  const double gap = static_cast<int>(son.getFrame() - father.getFrame());
  return link.getReliability() * (100 - gap * GroupTracker::sonDistanceWeight) / 100;
}

}  // namespace

void GroupTracker::initFrame(const QList<QSharedPointer<kelDataActor>>& actors,
                             const QSharedPointer<kelDataImage>& image, unsigned int frame) {
  m_currentFrame = frame;
  setTrackedMobiles(actors);
  m_currentImage = image;
}

void GroupTracker::setTrackedMobiles(const QList<QSharedPointer<kelDataActor>>& actors) {
  for (const auto& actor : actors) {
    Diagnostics::print("TPO {}\n", static_cast<int>(actor->getIdent()));
    if (actor->getLinkedPhysicalObjectList().empty()) {
      // An actor without mobiles tells that the upstream tracker is still starting: the frame is
      // not to be trusted, so nothing is forgotten or refreshed by it either.
      return;
    }
    m_mobilesByFrame[m_currentFrame].push_back(takeIn(*actor));
  }
  forgetOldMobiles();
  forgetOldFrames();
  refreshBestSons();
  printMetaMobiles();
}

QSharedPointer<MetaLPO> GroupTracker::takeIn(const kelDataActor& actor) {
  const auto& objects = actor.getLinkedPhysicalObjectList();
  auto mobile = QSharedPointer<MetaLPO>::create(objects.back(), m_currentFrame);
  m_mobiles[mobile->getIdent()] = mobile;
  mobile->setChainLength(static_cast<double>(objects.size()));
  linkToFathers(mobile);
  readChain(actor, *mobile);
  electBestFather(mobile);
  preferPredecessor(actor, mobile);
  mobile->computeSpeed();
  return mobile;
}

void GroupTracker::linkToFathers(const QSharedPointer<MetaLPO>& mobile) const {
  for (const auto& link : mobile->getPhysicalObject()->getFatherLinks()) {
    const auto father = link->getFather();
    const auto son = link->getSon();
    mobile->addFatherLink(QSharedPointer<MetaLPOLink>::create(
        father ? node(static_cast<int>(father->getIdent())) : QSharedPointer<MetaLPO>(),
        son ? node(static_cast<int>(son->getIdent())) : QSharedPointer<MetaLPO>(),
        link->getReliability()));
  }
  mobile->sortLinks();
}

void GroupTracker::readChain(const kelDataActor& actor, MetaLPO& mobile) const {
  const auto& objects = actor.getLinkedPhysicalObjectList();
  double running = 0.0;
  for (auto current = objects.rbegin(); std::next(current) != objects.rend(); ++current) {
    const int predecessorId = static_cast<int>((*std::next(current))->getIdent());
    if (!node(predecessorId)) {
      running = 0.0;
      continue;
    }
    const auto currentNode = node(static_cast<int>((*current)->getIdent()));
    const double reliability = currentNode ? currentNode->linkReliability(predecessorId) : 0.0;
    running = running < lostChain ? reliability : reliability * running;
    mobile.chain().push_back({predecessorId, running});
  }
}

void GroupTracker::electBestFather(const QSharedPointer<MetaLPO>& mobile) const {
  const unsigned int id = mobile->computeBestFather();
  if (id == none) {
    return;
  }
  if (const auto father = node(static_cast<int>(id))) {
    father->setBestSon(mobile);
  }
}

void GroupTracker::preferPredecessor(const kelDataActor& actor,
                                     const QSharedPointer<MetaLPO>& mobile) const {
  const auto& objects = actor.getLinkedPhysicalObjectList();
  if (objects.size() < 2) {
    return;
  }
  const int id = static_cast<int>((*std::next(objects.rbegin()))->getIdent());
  const auto predecessor = node(id);
  if (!predecessor) {
    return;
  }
  const auto& chain = mobile->chain();
  const auto entry =
      std::find_if(chain.begin(), chain.end(), [&](const auto& link) { return link.ident == id; });
  double reliability = entry == chain.end() ? 0.0 : entry->reliability;
  if (m_currentFrame != predecessor->getFrame()) {
    reliability /= std::log(static_cast<double>(m_currentFrame - predecessor->getFrame() + 2));
  }
  if (reliability > minReliabilityBest) {
    mobile->overrideBestFather(predecessor, reliability);
    predecessor->setBestSon(mobile);
    predecessor->setBestSonId(mobile->getIdent());
  }
}

void GroupTracker::forgetOldMobiles() {
  const int firstKeptFrame = static_cast<int>(m_currentFrame - maxFrames);
  for (auto entry = m_mobiles.begin(); entry != m_mobiles.end();) {
    const auto& mobile = entry->second;
    mobile->eraseOldLinks(firstKeptFrame);
    if (static_cast<int>(mobile->getFrame()) >= firstKeptFrame) {
      ++entry;
      continue;
    }
    if (const auto home = m_groups.value(mobile->getGroupId())) {
      home->removeMobile(entry->first);
    }
    mobile->resetLinks();
    entry = m_mobiles.erase(entry);
  }
}

void GroupTracker::forgetOldFrames() {
  const int firstKeptFrame = static_cast<int>(m_currentFrame - maxFrames);
  if (firstKeptFrame < 1) {
    return;
  }
  const auto end = m_mobilesByFrame.lower_bound(static_cast<unsigned int>(firstKeptFrame));
  for (auto entry = m_mobilesByFrame.begin(); entry != end;) {
    Diagnostics::print("erasing frame {}\n", entry->first);
    entry = m_mobilesByFrame.erase(entry);
  }
}

void GroupTracker::refreshBestSons() {
  const unsigned int window = std::min(m_currentFrame, Util::temporalWinSize);
  if (window == 0) {
    return;
  }
  FathersById fathers;
  const unsigned int oldest = m_currentFrame - window;
  for (unsigned int frame = oldest; frame < m_currentFrame; ++frame) {
    for (const auto& mobile : m_mobilesByFrame[frame]) {
      fathers[mobile->getIdent()].push_back({mobile});
    }
  }
  for (unsigned int frame = oldest + 1; frame <= m_currentFrame; ++frame) {
    for (const auto& son : m_mobilesByFrame[frame]) {
      for (const auto& link : son->getFatherLinks()) {
        const auto linked = link->getFather();
        const auto candidates = linked ? fathers.find(linked->getIdent()) : fathers.end();
        if (candidates == fathers.end()) {
          continue;
        }
        const double score = sonScore(*link, *linked, *son);
        for (auto& [father, best] : candidates->second) {
          if (score > best && mayBeSon(father->getFrame(), frame, m_currentFrame)) {
            best = score;
            father->setBestSon(son);
            father->setBestSonId(son->getIdent());
            father->setBestSonScore(score);
          }
        }
      }
    }
  }
}
