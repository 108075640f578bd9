#pragma once

#include "tracker/tracking/GroupMembers.h"
#include "tracker/tracking/MetaLPO.h"

#include <array>
#include <cstddef>
#include <memory_resource>
#include <optional>
#include <vector>

/// What a group's coherence would be with some mobiles more, without touching the group: only the
/// frames that the mobiles come to are copied, everything else is read from the group.
///
/// Works as long as every mobile is either a member already or has an id that no member has; the
/// group outlives the trial.
class GroupTrial {
 public:
  GroupTrial(const GroupMembers& members, const Cohesion& cohesion);
  GroupTrial(const GroupTrial&) = delete;
  GroupTrial& operator=(const GroupTrial&) = delete;
  ~GroupTrial() = default;

  /// Adds a mobile; false, and the trial is of no more use, when a member has its id.
  bool add(MetaLPO* mobile);
  double coherence() const { return m_cohesion.coherence(); }
  /// Brings the spreads up to date with all that was added since the last call.
  void updateSpreads() { m_cohesion.spreads = meanSpreads(); }
  /// The members at a frame together with those added; null when there are none.
  const FrameMembers* at(unsigned int frame) const;
  /// The latest frame from 1 on that lies before `frame` and has members; `frame` without one.
  unsigned int frameBefore(unsigned int frame) const;

 private:
  enum class Known { no, yes, asAnotherNode };

  /// The sum of the spreads of the frames before a touched one.
  struct PartialSum {
    Spreads sum;
    std::size_t place = 0;  ///< of the first of the group's frames that is not in it

    void add(const Spreads& spreads) {
      sum.speed += spreads.speed;
      sum.direction += spreads.direction;
    }
  };

  Known isKnown(const MetaLPO& mobile) const;
  const FrameMembers& insert(MetaLPO* mobile, bool isLatest);
  FrameMembers& touch(unsigned int frame);
  const MetaLPO* nextLower(int id) const;
  Spreads meanSpreads();
  void sumUpToTheLastTouched();
  void passTouched(const FrameMembers& touched, PartialSum& partial) const;
  void passUntil(unsigned int frame, PartialSum& partial) const;
  Spreads spreadsOfAll();
  void sampleAll();

  const GroupMembers& m_group;
  Cohesion m_cohesion;
  const MetaLPO* m_latest;  ///< of all members and those added the one with the highest id, or null
  bool m_hasSeveralAtOnce;
  std::array<std::byte, 4096> m_room;  ///< for a walk through a usual window without an allocation
  std::pmr::monotonic_buffer_resource m_memory{m_room.data(), m_room.size()};
  std::pmr::vector<MetaLPO*> m_added{&m_memory};
  std::pmr::vector<FrameMembers> m_touched{&m_memory};  ///< ascending by frame
  int m_newFrames = 0;  ///< touched frames that the group does not have
  /// For each of the first touched frames, as far as nothing before it has changed.
  std::pmr::vector<PartialSum> m_sums{&m_memory};
  /// In ascending order of ids the members and the first added ones; none when that is out of date.
  std::optional<MotionSample> m_sample;
  std::size_t m_sampled = 0;  ///< added ones that are in it
};
