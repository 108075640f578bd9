#include "tests/tracker/tracking/PlainChains.h"

#include "tracker/tracking/GroupTracker.h"

#include <algorithm>
#include <iterator>

void PlainChains::takeIn(const Actors& actors, int frame) {
  for (const auto& actor : actors) {
    if (actor->getLinkedPhysicalObjectList().empty()) {
      return;
    }
    takeIn(*actor, frame);
  }
  forgetBefore(frame - static_cast<int>(GroupTracker::maxFrames));
}

void PlainChains::takeIn(const kelDataActor& actor, int frame) {
  const auto& objects = actor.getLinkedPhysicalObjectList();
  const int id = static_cast<int>(objects.back()->getIdent());
  m_mobiles[id] = {frame, {}, {}};
  Mobile& mobile = m_mobiles[id];
  for (const auto& link : objects.back()->getFatherLinks()) {
    const auto father = link->getFather();
    const auto known =
        father ? m_mobiles.find(static_cast<int>(father->getIdent())) : m_mobiles.end();
    if (known != m_mobiles.end()) {
      mobile.links.push_back({known->first, known->second.frame, link->getReliability()});
    }
  }
  std::stable_sort(mobile.links.begin(), mobile.links.end(),
                   [](const Link& a, const Link& b) { return a.reliability < b.reliability; });
  double running = 0.0;
  int current = id;
  for (auto object = std::next(objects.rbegin()); object != objects.rend(); ++object) {
    const int predecessor = static_cast<int>((*object)->getIdent());
    if (m_mobiles.contains(predecessor)) {
      const double step = stepFrom(current, predecessor);
      running = running < 0.0001 ? step : step * running;
      mobile.chain.emplace_back(predecessor, running);
    } else {
      running = 0.0;
    }
    current = predecessor;
  }
}

double PlainChains::stepFrom(int id, int fatherId) const {
  const auto mobile = m_mobiles.find(id);
  if (mobile != m_mobiles.end()) {
    for (const Link& link : mobile->second.links) {
      if (link.father == fatherId) {
        return link.reliability;
      }
    }
  }
  return 0.0;
}

void PlainChains::forgetBefore(int firstKeptFrame) {
  std::erase_if(m_mobiles, [&](const auto& entry) { return entry.second.frame < firstKeptFrame; });
  for (auto& [id, mobile] : m_mobiles) {
    std::erase_if(mobile.links,
                  [&](const Link& link) { return link.fatherFrame < firstKeptFrame; });
  }
}

std::map<int, PlainChains::Chain> PlainChains::all() const {
  std::map<int, Chain> chains;
  for (const auto& [id, mobile] : m_mobiles) {
    chains[id] = mobile.chain;
  }
  return chains;
}
