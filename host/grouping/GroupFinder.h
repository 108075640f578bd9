#pragma once

#include "host/grouping/FrameGroups.h"
#include "host/grouping/GroupIdentity.h"
#include "host/grouping/PairEvidence.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace grouptracker {

/// Finds the groups of an input as people mean them: who belongs together, for how long, out of
/// which groups. Takes one frame after the other and hands each of them out again with its groups,
/// once what follows within the look-ahead is known. Frames without time are taken to be 0.4 s
/// apart, and one whose time has not grown as far from the one before as that was from its own. The
/// same frames give the same groups, bit by bit.
class GroupFinder {
 public:
  /// `lookAhead`: seconds of the future that a decision may use, 0 or more.
  GroupFinder(EvidenceModel model, double lookAhead)
      : m_lookAhead(lookAhead), m_evidence(std::move(model), lookAhead), m_identity(lookAhead) {}

  /// Is told of every frame at which groups are looked for what is believed of the pairs, before
  /// the groups of that frame are handed out.
  using TickWatcher = std::function<void(const PeopleFrame&, const TickBeliefs&)>;
  void watchTicks(TickWatcher watcher) {
    m_watcher = std::move(watcher);
    m_evidence.keepFeatures();
  }

  /// Takes the next frame; returns those that are decided now, in order.
  std::vector<FrameGroups> next(const PeopleFrame& frame);
  /// Returns the remaining frames, decided without a future.
  std::vector<FrameGroups> finish();

 private:
  struct WaitingFrame {
    PeopleFrame frame;
    std::optional<double> tick;  ///< seconds, when groups are looked for at this frame
  };

  double clock(const PeopleFrame& frame);
  std::vector<FrameGroups> handOut(double knownUntil);
  FrameGroups describe(const WaitingFrame& waiting);
  FoundGroup describe(const TickGroup& group, const std::vector<std::size_t>& members,
                      const WaitingFrame& waiting);
  std::vector<GroupId> listedOrigin(const TickGroup& group) const;

  double m_lookAhead;     ///< seconds
  TickWatcher m_watcher;  ///< empty when nobody wants to know
  PairEvidence m_evidence;
  GroupIdentity m_identity;

  std::optional<double> m_now;  ///< of the latest frame, seconds; none before the first
  double m_setBack = 0.0;       ///< seconds by which the input's clock has gone back so far
  double m_distance = ticks::usualLength;  ///< seconds from frame to frame, where time has grown
  std::optional<double> m_lastTick;        ///< seconds; none before the first
  std::deque<WaitingFrame> m_waiting;

  std::vector<TickGroup> m_groups;          ///< of the latest decided tick
  std::map<GroupId, std::int64_t> m_since;  ///< number of the first frame that lists a group
  std::vector<GroupId> m_listed;            ///< groups of the latest line, ascending
};

}  // namespace grouptracker
