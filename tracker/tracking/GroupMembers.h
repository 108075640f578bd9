#pragma once

#include "tracker/tracking/FrameMembers.h"
#include "tracker/tracking/MetaLPO.h"

#include <QSharedPointer>

#include <map>
#include <vector>

/// All members of a group: by mobile id, where an id has at most its latest node, and filed by
/// frame. Owns a share in the nodes.
class GroupMembers {
 public:
  using ById = std::map<int, QSharedPointer<MetaLPO>>;

  GroupMembers() = default;
  GroupMembers(const GroupMembers&) = default;
  GroupMembers& operator=(const GroupMembers&) = delete;
  ~GroupMembers() = default;

  const ById& byId() const { return m_byId; }
  bool contains(int id) const { return m_byId.contains(id); }
  /// The member with the id; null when there is none.
  MetaLPO* find(int id) const;
  /// The member with the next lower id that is not negative; null when there is none.
  MetaLPO* nextLower(int id) const;

  /// Adds a mobile; an earlier node of the same id goes.
  void add(const QSharedPointer<MetaLPO>& mobile);
  /// Whether there was a member with the id.
  bool remove(int id);
  /// Removes all members observed before the frame, compared as signed numbers.
  void trim(int firstKeptFrame);

  /// The frames with members, ascending.
  const std::vector<FrameMembers>& frames() const { return m_frames; }
  /// The members at a frame; null when there are none.
  const FrameMembers* at(unsigned int frame) const;
  /// The place of the first frame that is not before `frame`.
  std::size_t firstFrom(unsigned int frame) const;
  /// Whether some frame has two members or more.
  bool hasSeveralAtOnce() const { return m_crowdedFrames > 0; }
  /// The sum of the spreads of the first `count` frames, added in ascending order.
  Spreads spreadSum(std::size_t count) const;
  /// The spreads of the frame at a place.
  Spreads spreadsAt(std::size_t place) const;
  /// The mean of the frames' spreads; of all members together when no frame has two.
  Spreads meanSpreads() const;

 private:
  void file(MetaLPO* mobile);
  void unfile(const MetaLPO& mobile);
  void changedAt(std::size_t place);
  void compareMotions() const;

  ById m_byId;
  std::vector<FrameMembers> m_frames;
  int m_crowdedFrames = 0;
  const MotionChanges* m_motions = nullptr;  ///< of all members; null when they share none
  // Element i is the sum over the first i frames; so many of them hold as the motions have not
  // changed since they were last compared.
  mutable std::vector<Spreads> m_sums{Spreads()};
  mutable unsigned int m_comparedChanges = 0;
};

/// The running numbers behind a group's coherence: how far apart its members stand and how much
/// they differ in motion.
struct Cohesion {
  double avgIntraDist = 0.0;        ///< average distance between members, metres
  double closedAvgIntraDist = 0.0;  ///< the same when the last frame was closed
  Spreads spreads;

  /// Brings the average distance up to date after a change at a frame. `distinctFrames` counts the
  /// group's frames; a member alone at its frame is measured against the member with the next lower
  /// id, whatever its frame, and changes nothing when there is none.
  void updateDistance(int distinctFrames, const FrameMembers& changed, const MetaLPO* nextLower);
  /// The weighted mean of the three; lower is tighter. Not a number when all weights are 0.
  double coherence() const;
};
