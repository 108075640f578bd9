#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/GroupTracker.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <iterator>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace {

constexpr double lostChain = 0.0001;  // a chain less reliable than this starts anew

// A node takes a mobile of the current frame for its son only when it is of the frame just before.
bool mayBeSon(unsigned int fatherFrame, unsigned int sonFrame, unsigned int currentFrame) {
  if (sonFrame == currentFrame) {
    return fatherFrame == currentFrame - 1;
  }
  return fatherFrame < sonFrame;
}

// Finds the best sons of the nodes of the last frames in one walk over the links of their sons: of
// each node the best score so far is kept.
class BestSonSearch {
 public:
  BestSonSearch(unsigned int firstFatherFrame, unsigned int currentFrame)
      : m_firstFatherFrame(firstFatherFrame), m_currentFrame(currentFrame) {}

  void addFather(const QSharedPointer<MetaLPO>& father) {
    makeRoomFor(father->getIntakeNumber());
    if (father->hasNamesake()) {
      m_namesakes[father->getIdent()].push_back(father.data());
    }
  }

  void addSon(const QSharedPointer<MetaLPO>& son) {
    for (const auto& link : son->getFatherLinks()) {
      MetaLPO* father = link.fatherNode();
      if (father == nullptr) {
        continue;
      }
      const double gap = static_cast<int>(son->getFrame() - father->getFrame());
      const double score =
          link.getReliability() * (100 - gap * GroupTracker::sonDistanceWeight) / 100;
      if (!father->hasNamesake()) {
        offer(son, score, *father);
      } else if (const auto namesakes = m_namesakes.find(father->getIdent());
                 namesakes != m_namesakes.end()) {
        // A link counts for every node of the father's id.
        for (MetaLPO* namesake : namesakes->second) {
          offer(son, score, *namesake);
        }
      }
    }
  }

 private:
  static constexpr double noScore = -1.0;  // below every score that makes a best son

  void makeRoomFor(std::size_t number) {
    if (m_bestScores.empty()) {
      m_firstFather = number;
    } else if (number < m_firstFather) {
      m_bestScores.insert(m_bestScores.begin(), m_firstFather - number, noScore);
      m_firstFather = number;
    }
    m_bestScores.resize(std::max(m_bestScores.size(), number - m_firstFather + 1), noScore);
  }

  void offer(const QSharedPointer<MetaLPO>& son, double score, MetaLPO& father) {
    if (father.getFrame() < m_firstFatherFrame ||
        !mayBeSon(father.getFrame(), son->getFrame(), m_currentFrame)) {
      return;
    }
    double& best = m_bestScores[father.getIntakeNumber() - m_firstFather];
    if (score > best) {
      best = score;
      father.setBestSon(son);
      father.setBestSonId(son->getIdent());
      father.setBestSonScore(score);
    }
  }

  unsigned int m_firstFatherFrame;
  unsigned int m_currentFrame;
  std::size_t m_firstFather = 0;     // its number of intake
  std::vector<double> m_bestScores;  // from that one on
  std::unordered_map<int, std::vector<MetaLPO*>> m_namesakes;
};

}  // namespace

void GroupTracker::initFrame(const QList<QSharedPointer<kelDataActor>>& actors,
                             const QSharedPointer<kelDataImage>& image, unsigned int frame) {
  m_currentFrame = frame;
  setTrackedMobiles(actors);
  m_currentImage = image;
}

void GroupTracker::setTrackedMobiles(const QList<QSharedPointer<kelDataActor>>& actors) {
  m_intakeWasCutShort = true;
  for (const auto& actor : actors) {
    Diagnostics::write("TPO ", signedId(actor->getIdent()), "\n");
    if (actor->getLinkedPhysicalObjectList().empty()) {
      // An actor without mobiles tells that the upstream tracker is still starting: the frame is
      // not to be trusted, so nothing is forgotten or refreshed by it either.
      return;
    }
    m_mobilesByFrame[m_currentFrame].push_back(takeIn(*actor));
  }
  m_intakeWasCutShort = false;
  forgetOldMobiles();
  forgetOldFrames();
  refreshBestSons();
  printMetaMobiles();
}

QSharedPointer<MetaLPO> GroupTracker::takeIn(const kelDataActor& actor) {
  const auto& objects = actor.getLinkedPhysicalObjectList();
  const auto mobile = makeNode(objects.back());
  m_mobiles.add(mobile);
  mobile->setChainLength(static_cast<double>(objects.size()));
  linkToFathers(mobile);
  m_mobiles.fileLinks(mobile);
  readChain(actor, *mobile);
  electBestFather(mobile);
  preferPredecessor(actor, mobile);
  mobile->computeSpeed();
  return mobile;
}

QSharedPointer<MetaLPO> GroupTracker::makeNode(
    const QSharedPointer<kelDataLinkedPhysicalObject>& object) {
  auto node = QSharedPointer<MetaLPO>::create(object, m_currentFrame);
  node->enterTracker(m_intakes++, m_motions);
  return node;
}

void GroupTracker::linkToFathers(const QSharedPointer<MetaLPO>& mobile) const {
  const auto& links = mobile->getPhysicalObject()->getFatherLinks();
  mobile->reserveLinks(links.size());
  for (const auto& link : links) {
    const auto father = link->getFather();
    const auto son = link->getSon();
    mobile->addFatherLink(father ? node(signedId(father->getIdent())) : QSharedPointer<MetaLPO>(),
                          son ? node(signedId(son->getIdent())) : QSharedPointer<MetaLPO>(),
                          link->getReliability());
  }
  mobile->sortLinks();
}

/// Goes back along the upstream tracker's own chain, step by step. The chain of a predecessor goes
/// the same way, so its steps are taken over as long as nothing on it can have changed.
class GroupTracker::ChainWalk {
 public:
  ChainWalk(const GroupTracker& tracker, const MetaLPO& start)
      : m_mobiles(tracker.m_mobiles), m_firstKept(tracker.firstKeptFrame()), m_current(&start) {}

  /// The next predecessor with the reliability of the step to it; none for an unknown one.
  std::optional<MetaLPO::ChainEntry> step(int predecessorId) {
    if (const MetaLPO::ChainEntry* known = sharedStep(predecessorId)) {
      return *known;
    }
    const MetaLPOLink* link = m_current == nullptr ? nullptr : m_current->linkTo(predecessorId);
    const bool isLatest = link != nullptr && link->fatherNode()->isRemembered();
    const bool isAfterGap = m_current == nullptr;
    m_current = isLatest ? link->fatherNode() : m_mobiles.node(predecessorId);
    if (m_current == nullptr) {
      return {};
    }
    if (m_isFirst) {
      share(*m_current);
    }
    m_isFirst = false;
    return MetaLPO::ChainEntry{
        predecessorId, isAfterGap ? MetaLPO::afterGap : static_cast<int>(m_current->getFrame()),
        0.0, link == nullptr ? 0.0 : link->getReliability()};
  }

 private:
  void share(const MetaLPO& predecessor) {
    if (!m_mobiles.hasNamesakes()) {
      m_shared = predecessor.chain();
    }
  }

  // What was seen in a frame that is kept is still remembered, and so are the links to it.
  const MetaLPO::ChainEntry* sharedStep(int predecessorId) {
    if (!m_shared.empty() && m_shared.front().ident == predecessorId &&
        m_shared.front().frame >= m_firstKept) {
      const MetaLPO::ChainEntry* known = &m_shared.front();
      m_shared = m_shared.subspan(1);
      m_currentId = predecessorId;
      m_isOnSharedWay = true;
      return known;
    }
    if (m_isOnSharedWay) {
      m_current = m_mobiles.node(m_currentId);
      m_isOnSharedWay = false;
    }
    m_shared = {};
    return nullptr;
  }

  const RememberedNodes& m_mobiles;
  int m_firstKept;
  const MetaLPO* m_current;  ///< null after an unknown predecessor
  bool m_isFirst = true;
  std::span<const MetaLPO::ChainEntry> m_shared;  ///< steps that are still to come
  bool m_isOnSharedWay = false;                   ///< then the walk is at `m_currentId`
  int m_currentId = noId;
};

void GroupTracker::readChain(const kelDataActor& actor, MetaLPO& mobile) const {
  const auto& objects = actor.getLinkedPhysicalObjectList();
  mobile.chain().reserve(objects.size() - 1);
  ChainWalk walk(*this, mobile);
  double running = 0.0;
  for (auto object = std::next(objects.rbegin()); object != objects.rend(); ++object) {
    auto entry = walk.step(signedId((*object)->getIdent()));
    if (!entry) {
      running = 0.0;
      continue;
    }
    running = running < lostChain ? entry->step : entry->step * running;
    entry->reliability = running;
    mobile.chain().push_back(*entry);
  }
}

void GroupTracker::electBestFather(const QSharedPointer<MetaLPO>& mobile) const {
  mobile->computeBestFather();
  if (mobile->getBestFatherId() == noId) {
    return;
  }
  if (const auto father = node(mobile->getBestFatherId())) {
    father->setBestSon(mobile);
  }
}

void GroupTracker::preferPredecessor(const kelDataActor& actor,
                                     const QSharedPointer<MetaLPO>& mobile) const {
  const auto& objects = actor.getLinkedPhysicalObjectList();
  if (objects.size() < 2) {
    return;
  }
  const int id = signedId((*std::next(objects.rbegin()))->getIdent());
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

int GroupTracker::firstKeptFrame() const {
  return static_cast<int>(m_currentFrame - maxFrames);
}

void GroupTracker::forgetOldMobiles() {
  m_mobiles.eraseOldLinks(firstKeptFrame());
  std::deque<QSharedPointer<MetaLPO>> old;
  for (const auto& [frame, mobiles] : m_mobilesByFrame) {
    if (static_cast<int>(frame) >= firstKeptFrame()) {
      break;
    }
    std::copy_if(mobiles.begin(), mobiles.end(), std::back_inserter(old),
                 [](const auto& mobile) { return mobile->isRemembered(); });
  }
  // In the order of their ids: every departure lets the group elect its representative anew.
  std::sort(old.begin(), old.end(),
            [](const auto& a, const auto& b) { return a->getIdent() < b->getIdent(); });
  for (const auto& mobile : old) {
    if (const auto home = m_groups.value(mobile->getGroupId())) {
      home->removeMobile(mobile->getIdent());
    }
    mobile->resetLinks();
    m_mobiles.remove(mobile->getIdent());
  }
}

void GroupTracker::forgetOldFrames() {
  if (firstKeptFrame() < 1) {
    return;
  }
  const auto end = m_mobilesByFrame.lower_bound(static_cast<unsigned int>(firstKeptFrame()));
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
  const unsigned int oldest = m_currentFrame - window;
  const int firstFatherFrame = std::max(static_cast<int>(oldest), firstKeptFrame());
  BestSonSearch search(static_cast<unsigned int>(firstFatherFrame), m_currentFrame);
  for (unsigned int frame = oldest; frame < m_currentFrame; ++frame) {
    for (const auto& father : m_mobilesByFrame[frame]) {
      search.addFather(father);
    }
  }
  if (!m_mobilesByFrame[m_currentFrame - 1].empty()) {
    // Only somebody who looks for sons asks for the current frame, and asking makes the entry.
    m_mobilesByFrame.try_emplace(m_currentFrame);
  }
  for (auto entry = m_mobilesByFrame.upper_bound(oldest);
       entry != m_mobilesByFrame.end() && entry->first <= m_currentFrame; ++entry) {
    for (const auto& son : entry->second) {
      search.addSon(son);
    }
  }
}
