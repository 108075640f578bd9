#include "tracker/geometry/ObjectType.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/Group.h"
#include "tracker/tracking/GroupTracker.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <set>

namespace {

constexpr int latest = -1;                         // asks `computeBestMobile` for the latest frame
constexpr double farthestRepresentative = 1000.0;  // metres; nobody beyond represents the group

// The pixels of the image under the box; none for a box that is beyond all memory.
cv::Mat patchOf(const cv::Mat& image, const cv::Rect& box) {
  cv::Mat patch;
  try {
    patch = cv::Mat(box.height, box.width, CV_32FC3);
  } catch (const cv::Exception&) {
    return {};
  }
  const cv::Rect visible = box & cv::Rect(0, 0, image.cols, image.rows);
  if (visible.area() > 0 && !patch.empty()) {
    cv::Mat target = patch(visible - box.tl());
    image(visible).convertTo(target, CV_32FC3);
  }
  return patch;
}

}  // namespace

std::span<MetaLPO* const> Group::membersAt(int frame) const {
  const FrameMembers* members = m_members.at(static_cast<unsigned int>(frame));
  return members == nullptr ? std::span<MetaLPO* const>() : members->members();
}

cv::Rect_<int> Group::bbox2D(int frame) const {
  const auto members = membersAt(frame);
  if (members.empty()) {
    return {0, 0, 0, 0};
  }
  int left = std::numeric_limits<int>::max();
  int top = std::numeric_limits<int>::max();
  // An edge left of or above the image counts as 0.
  int right = 0;
  int bottom = 0;
  for (const MetaLPO* mobile : members) {
    const cv::Rect& box = mobile->observation().getBoundingBox2D();
    left = std::min(left, box.x);
    top = std::min(top, box.y);
    right = std::max(right, box.x + box.width);
    bottom = std::max(bottom, box.y + box.height);
  }
  return {left, top, right - left, bottom - top};
}

BoundingBox3D Group::bbox3D(int frame) const {
  const auto members = membersAt(frame);
  if (members.empty()) {
    return {};
  }
  constexpr float bound = 2147483648.0F;
  BoundingBox3D box{-bound, -bound, -bound, bound, bound, bound};
  for (const MetaLPO* mobile : members) {
    const BoundingBox3D& member = mobile->observation().getBoundingBox3D();
    box.b0 = std::max(box.b0, member.b0);
    box.b1 = std::max(box.b1, member.b1);
    box.b2 = std::max(box.b2, member.b2);
    box.b3 = std::min(box.b3, member.b3);
    box.b4 = std::min(box.b4, member.b4);
    box.b5 = std::min(box.b5, member.b5);
  }
  return box;
}

cv::Point3_<float> Group::position(int frame) const {
  const auto members = membersAt(frame);
  if (members.empty()) {
    return {0.0F, 0.0F, 0.0F};
  }
  cv::Point3f sum(0.0F, 0.0F, 0.0F);
  for (const MetaLPO* mobile : members) {
    sum += mobile->observation().getPosition();
  }
  const auto count = static_cast<float>(members.size());
  return {sum.x / count, sum.y / count, sum.z / count};
}

cv::Point3f Group::centerAt(unsigned int frame) const {
  const FrameMembers* members = m_members.at(frame);
  return members == nullptr ? cv::Point3f(0.0F, 0.0F, 0.0F) : members->center();
}

// The frame asked for comes last: the members are where they were last seen before it.
cv::Point3_<float> Group::centerOfGravity(int frame) const {
  const std::size_t later = m_members.firstFrom(static_cast<unsigned int>(std::max(frame, 0)));
  const bool hasEarlier = later > 0 && m_members.frames()[later - 1].frame() > 0;
  return hasEarlier ? m_members.frames()[later - 1].center()
                    : centerAt(static_cast<unsigned int>(frame));
}

// The one of some mobiles that is nearest to the centre; the representative so far when all are too
// far off.
int Group::representative(std::span<MetaLPO* const> candidates, const cv::Point3f& center) const {
  int id = m_bestMobileId;
  double nearest = farthestRepresentative;
  for (const MetaLPO* mobile : candidates) {
    const double distance = Util::distance3DPoints(mobile->getCenter(), center);
    if (distance < nearest) {
      nearest = distance;
      id = mobile->getIdent();
    }
  }
  return id;
}

void Group::computeBestMobile(int frame) {
  if (getMobiles().empty()) {
    return;
  }
  if (frame == latest) {
    frame = static_cast<int>(m_members.frames().back().frame());
  }
  m_bestMobileId = representative(membersAt(frame), centerOfGravity(frame));
}

void Group::closeFrame(unsigned int frame, const std::map<int, QSharedPointer<MetaLPO>>& nodes,
                       const QSharedPointer<kelDataImage>& image) {
  m_isUpdated = false;
  m_cohesion.closedAvgIntraDist = m_cohesion.avgIntraDist;
  computeBestMobile(static_cast<int>(frame));
  m_members.trim(static_cast<int>(frame - GroupTracker::maxFrames));
  countLeavers(frame, nodes);
  countAlone();
  keepPatch(frame, image);
}

void Group::countLeavers(unsigned int frame, const std::map<int, QSharedPointer<MetaLPO>>& nodes) {
  if (numMobilesAtFrame(frame - 1) <= numMobilesAtFrame(frame)) {
    return;
  }
  std::set<int> leavers;
  for (const MetaLPO* mobile : membersAt(static_cast<int>(frame - 1))) {
    leavers.insert(mobile->getIdent());
  }
  for (const MetaLPO* mobile : membersAt(static_cast<int>(frame))) {
    leavers.erase(mobile->getBestFatherId());
  }
  // Every leaver repeats the count of all continuations outside the group, so it grows with the
  // square of how many left together.
  const int repetitions = static_cast<int>(leavers.size());
  std::set<int> continued;
  for (const auto& [id, node] : nodes) {
    if (!node || node->getFrame() != frame || m_members.contains(id) ||
        leavers.count(node->getBestFatherId()) == 0) {
      continue;
    }
    const int father = node->getBestFatherId();
    m_mobilesLeft += repetitions * presence(m_members.find(father)->getType());
    continued.insert(father);
  }
  for (const int id : leavers) {
    if (continued.count(id) == 0) {
      m_numMobiles -= headCount(m_members.find(id)->getType());
    }
  }
}

void Group::countAlone() {
  if (m_numMobiles == 1) {
    ++m_framesAlone;
  } else if (m_numMobiles > 1) {
    m_framesAlone = 0;
  }
}

void Group::keepPatch(unsigned int frame, const QSharedPointer<kelDataImage>& image) {
  const cv::Rect box = bbox2D(static_cast<int>(frame));
  cv::Mat patch;
  if (image && !m_mask && box != cv::Rect(0, 0, 0, 0)) {
    patch = patchOf(image->mat(), box);
  }
  m_rois.insert_or_assign(static_cast<int>(frame), ROI(std::move(patch), box));
  // A group may live for days: what is too old goes.
  m_rois.erase(m_rois.begin(),
               m_rois.lower_bound(static_cast<int>(frame - GroupTracker::maxFrames)));
}

void Group::freeROIs() {
  for (auto& [frame, roi] : m_rois) {
    roi.release();
  }
}
