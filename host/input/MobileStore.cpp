#include "host/input/MobileStore.h"

#include <opencv2/core/types.hpp>

#include <algorithm>

namespace grouptracker {

void MobileStore::beginFrame() {
  ++m_frame;
  m_idsByFrame.emplace_back();
  if (m_idsByFrame.size() > m_window) {
    archiveOldest();
  }
}

bool MobileStore::declare(const MobilePointer& mobile) {
  const std::uint32_t id = mobile->getIdent();
  if (isOfThisFrame(id)) {
    return false;
  }
  m_hasRenamed = m_hasRenamed || m_recent.contains(id) || isArchived(id);
  m_recent[id] = {mobile, m_frame};
  m_idsByFrame.back().push_back(id);
  return true;
}

bool MobileStore::isArchived(std::uint32_t id) {
  return m_largestArchived && id <= *m_largestArchived && m_archive.load(id);
}

const MobilePointer& MobileStore::find(std::uint32_t id) {
  const auto recent = m_recent.find(id);
  if (recent != m_recent.end()) {
    return recent->second.mobile;
  }
  const auto archived = m_archive.load(id);
  m_revived = archived ? MobilePointer::create(
                             id, QSharedPointer<kelDataPhysicalObject>::create(
                                     archived->type, cv::Rect(), archived->box3D, cv::Point3f()))
                       : MobilePointer();
  return m_revived;
}

bool MobileStore::isOfThisFrame(std::uint32_t id) const {
  const auto recent = m_recent.find(id);
  return recent != m_recent.end() && recent->second.frame == m_frame;
}

void MobileStore::archiveOldest() {
  const std::uint64_t oldestFrame = m_frame + 1 - m_idsByFrame.size();
  for (const std::uint32_t id : m_idsByFrame.front()) {
    const auto recent = m_recent.find(id);
    if (recent->second.frame == oldestFrame) {  // else it was declared again since
      if (m_archives) {
        const auto& object = recent->second.mobile->getPhysicalObject();
        m_archive.store(id, {object->getType(), object->getBoundingBox3D()});
        m_largestArchived = std::max(id, m_largestArchived.value_or(0));
      }
      m_recent.erase(recent);
    }
  }
  m_idsByFrame.pop_front();
}

}  // namespace grouptracker
