#pragma once

#include "host/grouping/GroupFinder.h"

#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Two persons at a moment at which groups are looked for.
struct PairMoment {
  std::int64_t frame = 0;            ///< the input's own number
  double time = 0.0;                 ///< seconds
  double distance = 0.0;             ///< metres
  std::optional<PairBelief> belief;  ///< none while they have not been near each other
  std::vector<PersonId> groupOfA;    ///< everybody in it; empty when alone
  std::vector<PersonId> groupOfB;
  GroupId group = 0;  ///< that both are in; 0 for none

  double logOdds() const { return belief ? belief->belief : -TogetherChain::largestEvidence; }
};

/// What happened between two persons over time, and why: goes along while groups are found and then
/// tells it in words.
class PairStory {
 public:
  PairStory(PersonId a, PersonId b, EvidenceModel model);

  /// Finds the groups of a recording, frame by frame.
  void watch(const PeopleFrame& frame, GroupFinder& finder);
  void finish(GroupFinder& finder);

  bool saw(PersonId person) const;
  /// The moments at which both were in view, in order.
  const std::vector<PairMoment>& moments() const { return m_moments; }
  /// One paragraph for each stretch of time in which they were together, or not.
  std::string text() const;

 private:
  /// Moments that follow each other with both in the same group, or in none together.
  struct Phase {
    std::size_t first = 0;
    std::size_t last = 0;
  };

  void take(const std::vector<FrameGroups>& decided);
  std::vector<Phase> phases() const;
  std::string overview() const;
  std::string describe(const Phase& phase) const;
  std::string explain(const PairMoment& moment) const;

  PersonId m_a;
  PersonId m_b;
  EvidenceModel m_model;
  bool m_sawA = false;
  bool m_sawB = false;
  std::vector<PairMoment> m_moments;
  std::size_t m_grouped = 0;  ///< moments of which the groups are known
};

}  // namespace grouptracker
