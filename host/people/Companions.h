#pragma once

#include "host/grouping/GroupFinder.h"

#include <cstdint>
#include <map>

namespace grouptracker {

/// Who goes with whom, as the evidence about pairs of people says it of what was seen so far: for
/// links, which have to be made before anything that follows is known.
class Companions {
 public:
  Companions() : m_finder(EvidenceModel::builtIn(), 0.0) {}

  /// Takes everybody at the next step of the input.
  void see(const PeopleFrame& people);
  /// 0 to 1: how sure it is that two persons belong together at that step; 0 when they do not.
  double certainty(std::uint32_t a, std::uint32_t b) const;

 private:
  /// The group that somebody is in.
  struct Membership {
    GroupId group = 0;
    double confidence = 0.0;
  };

  GroupFinder m_finder;
  std::map<PersonId, Membership> m_memberships;  ///< at the latest step
};

}  // namespace grouptracker
