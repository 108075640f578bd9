#include "tracker/tracking/GroupTracker.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Numbering.h"
#include "tracker/tracking/Grouping.h"

#include <iterator>

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

int GroupTracker::processedFrame() const {
  return delayed(m_currentFrame);
}

int GroupTracker::trackGroups() {
  groupFrame(m_pairs);
  return 0;
}

void GroupTracker::clusterGroups(const QSharedPointer<GroupExtension>& extension) {
  ClusterGrouping clusters(m_scene, extension);
  groupFrame(clusters);
}

void GroupTracker::groupFrame(Grouping& mode) {
  if (processedFrame() < earliestFrame) {
    closeFrame();
    return;
  }
  mode.beforeJoining(*this);
  updateGroups();
  mode.afterJoining(*this);
  detectMerge();
  detectSplit();
  printGroups();
  closeFrame();
}

unsigned int GroupTracker::groupId(
    const QSharedPointer<kelDataLinkedPhysicalObject>& object) const {
  const MetaLPO* mobile = latestNode(signedId(object->getIdent()));
  return unsignedId(mobile == nullptr ? noId : mobile->getGroupId());
}

unsigned int GroupTracker::groupId(int id) const {
  return unsignedId(homeOf(id));
}

int GroupTracker::homeOf(int id) const {
  const MetaLPO* mobile = id == noId ? nullptr : latestNode(id);
  return mobile == nullptr ? noId : mobile->getGroupId();
}

int GroupTracker::homeOf(const MetaLPO& mobile) const {
  if (mobile.isRemembered()) {
    return mobile.getGroupId();
  }
  const MetaLPO* latest = latestNode(mobile.getIdent());
  return latest == nullptr ? noId : latest->getGroupId();
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
  return unsignedId(created->getId());
}

void GroupTracker::addMobileToGroup(int groupId, unsigned int mobileId) {
  const auto target = m_groups.value(groupId);
  const auto mobile = node(signedId(mobileId));
  if (!target || !mobile) {
    return;
  }
  mobile->setGroupId(groupId);
  target->addMobile(mobile);
  target->setEndFrame(noFrame);
}

void GroupTracker::addMobileToGroup(int groupId, const QSharedPointer<MetaLPO>& mobile) {
  addMobileToGroup(groupId, unsignedId(mobile->getIdent()));
}

void GroupTracker::removeGroup(unsigned int id) {
  const int gone = signedId(id);
  moveToGroup({gone}, noId);
  Diagnostics::print("remove group {}\n", gone);
  const auto removed = m_groups.take(gone);
  if (removed) {
    removed->freeROIs();
  }
}

unsigned int GroupTracker::probableGroupRaw(const QSharedPointer<MetaLPO>& mobile) const {
  return unsignedId(likelyHomeRaw(mobile));
}

int GroupTracker::likelyHomeRaw(const QSharedPointer<MetaLPO>& mobile) const {
  if (const int home = homeOf(mobile->getBestFatherId()); home != noId) {
    return home;
  }
  const auto& links = mobile->getFatherLinks();
  for (auto link = links.rbegin(); link != links.rend(); ++link) {
    if (const MetaLPO* father = link->fatherNode()) {
      if (const int home = homeOf(*father); home != noId) {
        return home;
      }
    }
    const bool isFirst = std::next(link) == links.rend();
    if (isFirst || !(link->getReliability() > minReliabilityOthers)) {
      break;
    }
  }
  return noId;
}

unsigned int GroupTracker::probableGroup(const QSharedPointer<MetaLPO>& mobile) const {
  return unsignedId(likelyHome(mobile));
}

int GroupTracker::likelyHome(const QSharedPointer<MetaLPO>& mobile) const {
  const int home = homeOf(mobile->getBestFatherId());
  if (home != noId && mobile->getBestFatherReliability() > minReliabilityBest) {
    return home;
  }
  for (const auto& entry : mobile->chain()) {
    if (entry.reliability > minReliabilityOthers) {
      if (const int found = homeOf(entry.ident); found != noId) {
        return found;
      }
    }
  }
  if (!mobile->chain().empty()) {
    return noId;
  }
  const auto& links = mobile->getFatherLinks();
  for (auto link = links.rbegin(); link != links.rend(); ++link) {
    if (!(link->getReliability() > 0.5 * minReliabilityOthers)) {
      return noId;
    }
    if (const MetaLPO* father = link->fatherNode()) {
      if (const int found = homeOf(*father); found != noId) {
        return found;
      }
    }
  }
  return noId;
}

unsigned int GroupTracker::ancestorGroup(unsigned int id, int depth) const {
  return unsignedId(ancestralHome(signedId(id), depth));
}

int GroupTracker::ancestralHome(int id, int depth) const {
  for (int left = depth; left != 0; --left) {
    const MetaLPO* mobile = latestNode(id);
    if (mobile == nullptr || mobile->getBestFatherId() == id || mobile->getBestFatherId() == noId) {
      return noId;
    }
    id = mobile->getBestFatherId();
    if (const int found = homeOf(id); found != noId) {
      return found;
    }
  }
  return noId;
}
