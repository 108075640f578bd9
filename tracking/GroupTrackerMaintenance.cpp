#include <limits>
#include <set>

#include "Diagnostics.h"
#include "GroupTracker.h"
#include "MobileTypes.h"
#include "Util.h"

namespace {

constexpr double worstCandidate = 1001.0;  // a candidate must be better than this
constexpr int splitGenerations = 5;        // how far back an ancestor in another group is a split

}  // namespace

void GroupTracker::updateGroups() {
  if (static_cast<int>(processedFrame()) < 1) {
    return;
  }
  // One mobile per group and pass; the next pass sees the groups as they have become.
  while (updateGroupsOnce()) {
  }
}

bool GroupTracker::updateGroupsOnce() {
  bool added = false;
  for (const auto& [home, coherences] : findCandidates()) {
    double best = worstCandidate;
    unsigned int bestId = none;
    for (const auto& [id, coherence] : coherences) {
      if (coherence < best) {
        best = coherence;
        bestId = static_cast<unsigned int>(id);
      }
    }
    if (bestId != none && node(static_cast<int>(bestId))) {
      addMobileToGroup(static_cast<int>(home), bestId);
      added = true;
    }
  }
  return added;
}

GroupTracker::Candidates GroupTracker::findCandidates() {
  Candidates candidates;
  for (const auto& mobile : mobilesAt(processedFrame())) {
    if (typeOf(*mobile).isNoise() || groupId(mobile->getPhysicalObject()) != none) {
      continue;
    }
    const unsigned int home = probableGroup(mobile);
    const auto target = group(home);
    if (home == none || !target ||
        target->distance(mobile, static_cast<int>(mobile->getFrame())) > maxDistGroupUpdate) {
      continue;
    }
    const double coherence = target->groupCoherence(mobile);
    if (Group::coherenceThreshold > coherence) {
      candidates[home].try_emplace(mobile->getIdent(), coherence);
    }
  }
  return candidates;
}

void GroupTracker::detectMerge() {
  // No best son is a key like any other: mobiles that all end here count as meeting.
  std::map<unsigned int, std::set<int>> fathersBySon;
  for (const auto& [id, mobile] : m_mobiles) {
    if (static_cast<int>(mobile->getFrame()) >= static_cast<int>(processedFrame())) {
      fathersBySon[static_cast<unsigned int>(mobile->getBestSonId())].insert(id);
    }
  }
  for (const auto& [son, fathers] : fathersBySon) {
    std::set<unsigned int> ids;
    for (const int father : fathers) {
      if (const unsigned int home = groupId(father); home != none) {
        ids.insert(home);
      }
    }
    if (ids.size() > 1) {
      mergeGroups(ids);
    }
  }
}

void GroupTracker::mergeGroups(const std::set<unsigned int>& ids) {
  int oldest = std::numeric_limits<int>::max();
  QSharedPointer<Group> target;
  for (const unsigned int id : ids) {
    Diagnostics::print("{} ", static_cast<int>(id));
    const auto candidate = group(id);
    if (candidate && candidate->getStartFrame() < oldest) {
      oldest = candidate->getStartFrame();
      target = candidate;
    }
  }
  if (!target) {
    return;
  }
  for (const unsigned int id : ids) {
    const auto absorbed = group(id);
    if (!absorbed || absorbed == target) {
      continue;
    }
    target->doMerge(absorbed);
    for (const auto& [ident, mobile] : m_mobiles) {
      if (static_cast<unsigned int>(mobile->getGroupId()) == id) {
        mobile->setGroupId(target->getId());
      }
    }
    m_groups.remove(static_cast<int>(id));
    target->addMerge(static_cast<int>(id), static_cast<int>(processedFrame()));
  }
}

void GroupTracker::detectSplit() {
  for (const auto& candidate : std::as_const(m_groups)) {
    for (const auto& [id, member] : candidate->getMobiles()) {
      findSplit(*candidate, member);
    }
  }
}

void GroupTracker::findSplit(Group& group, const QSharedPointer<MetaLPO>& member) const {
  auto ancestor = member->getBestFather();
  for (int generation = 0; generation < splitGenerations && ancestor; ++generation) {
    const unsigned int home = groupId(ancestor->getPhysicalObject());
    if (home != none && static_cast<int>(home) != group.getId()) {
      Diagnostics::print("Split between {} and {}\n", static_cast<int>(home), group.getId());
      group.addSplit(static_cast<int>(home), static_cast<int>(m_currentFrame));
      return;
    }
    ancestor = ancestor->getBestFather();
  }
}

void GroupTracker::closeFrame() {
  std::list<int> emptied;
  for (const auto& closing : std::as_const(m_groups)) {
    closing->updateProperties(m_currentFrame);
    if (!closing->isUpdated() && closing->getEndFrame() == -1) {
      closing->setEndFrame(static_cast<int>(processedFrame()) - 1);
    }
    closing->closeFrame(processedFrame(), m_mobiles, m_currentImage);
    if (closing->getMobiles().empty()) {
      emptied.push_back(closing->getId());
    }
  }
  for (const int id : emptied) {
    removeGroup(static_cast<unsigned int>(id));
  }
}
