#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/tracking/GroupTracker.h"

#include <algorithm>

// Look-ups that the tracker offers though no frame asks for them. The older intake that filled the
// list which `getMobile` searches is gone, so it finds nobody.

std::pair<QSharedPointer<kelDataLinkedPhysicalObject>, bool> GroupTracker::getMobile(
    unsigned int id) const {
  const auto found = std::find_if(m_lpoList.begin(), m_lpoList.end(),
                                  [&](const auto& object) { return object->getIdent() == id; });
  if (found != m_lpoList.end()) {
    return {*found, true};
  }
  return {m_lpoList.empty() ? QSharedPointer<kelDataLinkedPhysicalObject>() : m_lpoList.front(),
          false};
}

QSharedPointer<kelDataLinkedPhysicalObject> GroupTracker::getStrongestFather(
    const QSharedPointer<kelDataLinkedPhysicalObject>& object, bool onlyReliable) const {
  auto strongest = object;
  double best = -1.0;
  for (const auto& link : object->getFatherLinks()) {
    const double reliability = link->getReliability();
    const auto father = link->getFather();
    if (!father || reliability <= best || (onlyReliable && reliability < reliabilityThreshold)) {
      continue;
    }
    best = reliability;
    strongest = father;
  }
  return strongest;
}

std::pair<unsigned int, cv::Rect> GroupTracker::getStrongestFather2D(
    const QSharedPointer<kelDataLinkedPhysicalObject>& object, bool onlyReliable) const {
  const auto father = getStrongestFather(object, onlyReliable);
  return {father->getIdent(), father->getPhysicalObject()->getBoundingBox2D()};
}

std::pair<unsigned int, BoundingBox3D> GroupTracker::getStrongestFather3D(
    const QSharedPointer<kelDataLinkedPhysicalObject>& object, bool onlyReliable) const {
  const auto father = getStrongestFather(object, onlyReliable);
  return {father->getIdent(), father->getPhysicalObject()->getBoundingBox3D()};
}

unsigned int GroupTracker::ancestorGroup(const QSharedPointer<kelDataLinkedPhysicalObject>& object,
                                         int depth) const {
  auto mobile = node(signedId(object->getIdent()));
  for (int left = depth; left != 0 && mobile; --left) {
    const auto father = mobile->ancestor();
    if (!father || father->getIdent() == mobile->getIdent()) {
      return none;
    }
    if (const int found = homeOf(father->getIdent()); found != noId) {
      return unsignedId(found);
    }
    mobile = node(father->getIdent());
  }
  return none;
}

unsigned int GroupTracker::ancestorsInSameGroup(std::pair<unsigned int, unsigned int> ids,
                                                int depth) const {
  for (int left = depth; getMobile(ids.first).second && getMobile(ids.second).second; --left) {
    const auto a = node(signedId(ids.first));
    const auto b = node(signedId(ids.second));
    if (!a || !b) {
      return none;
    }
    const int home = homeOf(a->getBestFatherId());
    if (home != noId && home == homeOf(b->getBestFatherId())) {
      return unsignedId(home);
    }
    if (left == 1) {
      return none;
    }
    ids = {unsignedId(a->getBestFatherId()), unsignedId(b->getBestFatherId())};
  }
  return none;
}

void GroupTracker::ancestors(const QSharedPointer<kelDataLinkedPhysicalObject>& object) const {
  for (const auto& father : object->getFathers()) {
    Diagnostics::print("{} ", signedId(father->getIdent()));
    ancestors(father);
  }
}
