#include "tracker/tracking/GroupTracker.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Util.h"

#include <algorithm>

double GroupTracker::reliabilityThreshold = 0.0;
unsigned int GroupTracker::maxFrames = 0;
double GroupTracker::maxDistGroupCreation = 0.0;
double GroupTracker::maxDistGroupMerge = 0.0;
double GroupTracker::maxDistGroupUpdate = 0.0;
double GroupTracker::tolerance = 0.0;
double GroupTracker::sonDistanceWeight = 0.0;
double GroupTracker::fatherDistanceWeight = 0.0;
double GroupTracker::minReliabilityBest = 0.0;
double GroupTracker::minReliabilityOthers = 0.0;

GroupTracker::~GroupTracker() = default;

unsigned int GroupTracker::processedFrame() const {
  return m_currentFrame - Util::temporalWinSize;
}

unsigned int GroupTracker::groupId(
    const QSharedPointer<kelDataLinkedPhysicalObject>& object) const {
  const MetaLPO* mobile = m_mobiles.node(static_cast<int>(object->getIdent()));
  return mobile == nullptr ? none : static_cast<unsigned int>(mobile->getGroupId());
}

unsigned int GroupTracker::groupId(int id) const {
  if (id == MetaLPO::noId) {
    return none;
  }
  const MetaLPO* mobile = m_mobiles.node(id);
  return mobile == nullptr ? none : static_cast<unsigned int>(mobile->getGroupId());
}

// The group under the mobile id of a node: that of the node itself unless its id was declared
// again.
unsigned int GroupTracker::groupIdOf(const MetaLPO& mobile) const {
  return mobile.isRemembered() ? static_cast<unsigned int>(mobile.getGroupId())
                               : groupId(mobile.getPhysicalObject());
}

void GroupTracker::addGroup(const QSharedPointer<Group>& group) {
  m_groups.insert(group->getId(), group);
}

unsigned int GroupTracker::createGroup(const QSharedPointer<MetaLPO>& mobile) {
  const auto created = QSharedPointer<Group>::create(mobile);
  if (const auto remembered = node(mobile->getIdent())) {
    remembered->setGroupId(created->getId());
  }
  addGroup(created);
  Diagnostics::print("created new group with mobile {} and id={}\n", mobile->getIdent(),
                     created->getId());
  return static_cast<unsigned int>(created->getId());
}

void GroupTracker::addMobileToGroup(int groupId, unsigned int mobileId) {
  const auto target = m_groups.value(groupId);
  const auto mobile = node(static_cast<int>(mobileId));
  if (!target || !mobile) {
    return;
  }
  mobile->setGroupId(groupId);
  target->addMobile(mobile);
  target->setEndFrame(-1);
}

void GroupTracker::addMobileToGroup(int groupId, const QSharedPointer<MetaLPO>& mobile) {
  addMobileToGroup(groupId, static_cast<unsigned int>(mobile->getIdent()));
}

void GroupTracker::removeGroup(unsigned int id) {
  moveToGroup({id}, MetaLPO::noId);
  Diagnostics::print("remove group {}\n", static_cast<int>(id));
  const auto removed = m_groups.take(static_cast<int>(id));
  if (removed) {
    removed->freeROIs();
  }
}

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

unsigned int GroupTracker::ancestorGroup(unsigned int id, int depth) const {
  int current = static_cast<int>(id);
  for (int left = depth; left != 0; --left) {
    const auto mobile = node(current);
    if (!mobile || mobile->getBestFatherId() == current ||
        mobile->getBestFatherId() == MetaLPO::noId) {
      return none;
    }
    current = mobile->getBestFatherId();
    if (const unsigned int found = groupId(current); found != none) {
      return found;
    }
  }
  return none;
}

unsigned int GroupTracker::ancestorGroup(const QSharedPointer<kelDataLinkedPhysicalObject>& object,
                                         int depth) const {
  auto mobile = node(static_cast<int>(object->getIdent()));
  for (int left = depth; left != 0 && mobile; --left) {
    const auto father = mobile->ancestor();
    if (!father || father->getIdent() == mobile->getIdent()) {
      return none;
    }
    if (const unsigned int found = groupId(father->getIdent()); found != none) {
      return found;
    }
    mobile = node(father->getIdent());
  }
  return none;
}

unsigned int GroupTracker::ancestorsInSameGroup(std::pair<unsigned int, unsigned int> ids,
                                                int depth) const {
  for (int left = depth; getMobile(ids.first).second && getMobile(ids.second).second; --left) {
    const auto a = node(static_cast<int>(ids.first));
    const auto b = node(static_cast<int>(ids.second));
    if (!a || !b) {
      return none;
    }
    const unsigned int groupA = groupId(a->getBestFatherId());
    const unsigned int groupB = groupId(b->getBestFatherId());
    if (groupA != none && groupA == groupB) {
      return groupA;
    }
    if (left == 1) {
      return none;
    }
    ids = {static_cast<unsigned int>(a->getBestFatherId()),
           static_cast<unsigned int>(b->getBestFatherId())};
  }
  return none;
}
