#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Numbering.h"
#include "tracker/geometry/ObjectType.h"
#include "tracker/tracking/GroupTracker.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <set>
#include <vector>

namespace {

constexpr double worstCandidate = 1001.0;  // a candidate must be better than this
constexpr int splitGenerations = 5;        // how far back an ancestor in another group is a split

}  // namespace

/// A free mobile that looks for a group, and the group that it asked last, to no avail.
struct GroupTracker::Seeker {
  QSharedPointer<MetaLPO> mobile;
  int refusedBy = noId;
};

/// The best of those that may join a group in a pass.
struct GroupTracker::Candidate {
  double coherence = worstCandidate;
  QSharedPointer<MetaLPO> mobile;
};

void GroupTracker::forgetRefusals(std::deque<Seeker>& seekers, int groupId) {
  for (Seeker& seeker : seekers) {
    if (seeker.refusedBy == groupId) {
      seeker.refusedBy = noId;
    }
  }
}

void GroupTracker::updateGroups() {
  if (processedFrame() < earliestFrame) {
    return;
  }
  std::deque<Seeker> seekers;
  for (const auto& mobile : processedMobiles()) {
    if (!mobile->getType().isNoise()) {
      seekers.push_back({mobile});
    }
  }
  // One mobile per group and pass; the next pass sees the groups as they have become.
  while (updateGroupsOnce(seekers)) {
  }
}

bool GroupTracker::updateGroupsOnce(std::deque<Seeker>& seekers) {
  std::erase_if(seekers, [this](const Seeker& seeker) { return homeOf(*seeker.mobile) != noId; });
  std::map<int, Candidate> candidates;
  for (Seeker& seeker : seekers) {
    ask(seeker, candidates);
  }
  bool added = false;
  for (const auto& [home, candidate] : candidates) {
    if (candidate.mobile) {
      addMobileToGroup(home, candidate.mobile);
      added = true;
      forgetRefusals(seekers, home);
    }
  }
  return added;
}

// A group that refused a mobile is not asked again before it has taken somebody in.
void GroupTracker::ask(Seeker& seeker, std::map<int, Candidate>& candidates) const {
  const auto& mobile = seeker.mobile;
  const int home = likelyHome(mobile);
  const auto target = m_groups.value(home);
  if (home == noId || !target || home == seeker.refusedBy) {
    return;
  }
  seeker.refusedBy = home;
  if (target->distance(mobile, static_cast<int>(mobile->getFrame())) > maxDistGroupUpdate) {
    return;
  }
  Candidate& best = candidates[home];
  // Of equal coherences the smallest id wins, so only what is beyond the best may be left open.
  const double limit =
      std::min(Group::coherenceThreshold,
               std::nextafter(best.coherence, std::numeric_limits<double>::infinity()));
  const double coherence = target->groupCoherence(mobile, limit);
  if (!(Group::coherenceThreshold > coherence)) {
    return;
  }
  const bool wins = coherence < best.coherence || (best.mobile && coherence == best.coherence &&
                                                   mobile->getIdent() < best.mobile->getIdent());
  if (wins) {
    best = {coherence, mobile};
  }
}

void GroupTracker::detectMerge() {
  // No best son is a key like any other: mobiles that all end here count as meeting. Only mobiles
  // with a group can bring groups together.
  std::map<unsigned int, std::vector<const MetaLPO*>> fathersBySon;
  const auto first =
      m_mobilesByFrame.lower_bound(static_cast<unsigned int>(std::max(processedFrame(), 0)));
  for (auto entry = first; entry != m_mobilesByFrame.end(); ++entry) {
    for (const auto& mobile : entry->second) {
      if (mobile->getGroupId() != noId && mobile->isRemembered()) {
        fathersBySon[unsignedId(mobile->getBestSonId())].push_back(mobile.data());
      }
    }
  }
  for (const auto& [son, fathers] : fathersBySon) {
    std::set<int> ids;
    for (const MetaLPO* father : fathers) {
      ids.insert(father->getGroupId());
    }
    if (ids.size() > 1) {
      mergeGroups(ids);
    }
  }
}

void GroupTracker::mergeGroups(const std::set<int>& ids) {
  int oldest = std::numeric_limits<int>::max();
  QSharedPointer<Group> target;
  for (const int id : ids) {
    Diagnostics::print("{} ", id);
    const auto candidate = m_groups.value(id);
    if (candidate && candidate->getStartFrame() < oldest) {
      oldest = candidate->getStartFrame();
      target = candidate;
    }
  }
  if (!target) {
    return;
  }
  moveToGroup(ids, target->getId());
  for (const int id : ids) {
    const auto absorbed = m_groups.value(id);
    if (!absorbed || absorbed == target) {
      continue;
    }
    target->doMerge(absorbed);
    m_groups.remove(id);
    target->addMerge(id, processedFrame());
  }
}

// The mobiles of a group are its members. Only where an id was declared again, or old members left
// while no frame was taken in, may a remembered mobile carry the id of a group that it is not in.
void GroupTracker::moveToGroup(const std::set<int>& from, int to) {
  const auto move = [&](MetaLPO& mobile) {
    if (mobile.getGroupId() != noId && from.contains(mobile.getGroupId())) {
      mobile.setGroupId(to);
    }
  };
  if (m_mobiles.hasNamesakes() || m_intakeWasCutShort) {
    for (const auto& [id, mobile] : m_mobiles.inOrder()) {
      move(*mobile);
    }
    return;
  }
  for (const int id : from) {
    if (const auto left = m_groups.value(id)) {
      for (const auto& [ident, mobile] : left->getMobiles()) {
        move(*mobile);
      }
    }
  }
}

namespace {

/// Looks among members' ancestors for one that is in another group. Members of one group mostly
/// descend from each other, so a search ends where that of an ancestor began.
class SplitSearch {
 public:
  explicit SplitSearch(const GroupTracker& tracker) : m_tracker(tracker) {}

  /// The id of the other group; none when there is none within the generations.
  int find(const MetaLPO& member, int groupId) {
    Walk walk{groupId, noId, 0};
    const MetaLPO* ancestor = member.ancestorNode();
    if (ancestor == nullptr && member.endsHistory()) {
      walk.settle(otherGroup(member, groupId), 1);  // a start stands for its own ancestor
    }
    for (int generation = 1; ancestor != nullptr && generation <= splitGenerations; ++generation) {
      walk.settle(otherGroup(*ancestor, groupId), generation);
      if (walk.found != noId) {
        break;
      }
      const Walk* const earlier = knownWalk(*ancestor);
      if (earlier != nullptr && earlier->askedFor == groupId && ancestor != &member) {
        if (generation + earlier->generations <= splitGenerations) {
          walk.settle(earlier->found, generation + earlier->generations);
        }
        break;
      }
      ancestor = ancestor->ancestorNode();
    }
    walkFrom(member) = walk;
    return walk.found;
  }

 private:
  /// What was found from a node on.
  struct Walk {
    int askedFor = noId;  ///< the group whose members search
    int found = noId;     ///< the other group
    int generations = 0;  ///< how far back it was

    void settle(int other, int generation) {
      found = other;
      generations = other == noId ? 0 : generation;
    }
  };

  int otherGroup(const MetaLPO& ancestor, int groupId) const {
    const int home = m_tracker.homeOf(ancestor);
    return home == groupId ? noId : home;
  }

  /// Null when the node was surely not asked yet.
  const Walk* knownWalk(const MetaLPO& node) const {
    const std::size_t place = node.getIntakeNumber() - m_first;  // beyond all for one before
    return place < m_walks.size() ? &m_walks[place] : nullptr;
  }

  Walk& walkFrom(const MetaLPO& node) {
    constexpr std::size_t room = 256;  // nodes of earlier frames that may be asked, too
    const std::size_t number = node.getIntakeNumber();
    if (m_walks.empty() || number < m_first) {
      const std::size_t first = number - std::min(number, room);
      m_walks.insert(m_walks.begin(), m_walks.empty() ? 0 : m_first - first, Walk());
      m_first = first;
    }
    if (number - m_first >= m_walks.size()) {
      m_walks.resize(number - m_first + 1);
    }
    return m_walks[number - m_first];
  }

  const GroupTracker& m_tracker;
  std::size_t m_first = 0;    ///< the number of intake of the first node below
  std::vector<Walk> m_walks;  ///< by number of intake
};

}  // namespace

void GroupTracker::detectSplit() {
  SplitSearch search(*this);
  for (const auto& group : std::as_const(m_groups)) {
    // From the oldest frame on, so that most searches end at once; told in the order of the ids.
    std::map<int, int> otherByMember;
    for (const auto& frame : group->frames()) {
      for (const MetaLPO* member : frame.members()) {
        const int other = search.find(*member, group->getId());
        if (other != noId) {
          otherByMember.emplace(member->getIdent(), other);
        }
      }
    }
    for (const auto& [id, other] : otherByMember) {
      Diagnostics::write("Split between ", other, " and ", group->getId(), "\n");
      group->addSplit(other, currentFrame());
    }
  }
}

std::map<int, QSharedPointer<MetaLPO>> GroupTracker::rememberedAt(unsigned int frame) const {
  std::map<int, QSharedPointer<MetaLPO>> remembered;
  const auto mobiles = m_mobilesByFrame.find(frame);
  if (mobiles != m_mobilesByFrame.end()) {
    for (const auto& mobile : mobiles->second) {
      if (mobile->isRemembered()) {
        remembered.emplace(mobile->getIdent(), mobile);
      }
    }
  }
  return remembered;
}

void GroupTracker::closeFrame() {
  std::list<int> emptied;
  const auto processed = static_cast<unsigned int>(processedFrame());
  const auto nodes = rememberedAt(processed);
  for (const auto& closing : std::as_const(m_groups)) {
    closing->updateProperties(m_currentFrame);
    if (!closing->isUpdated() && closing->getEndFrame() == noFrame) {
      closing->setEndFrame(processedFrame() - 1);
    }
    closing->closeFrame(processed, nodes, m_currentImage);
    if (closing->getMobiles().empty()) {
      emptied.push_back(closing->getId());
    }
  }
  for (const int id : emptied) {
    removeGroup(unsignedId(id));
  }
}
