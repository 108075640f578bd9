#pragma once

#include "host/grouping/FrameGroups.h"
#include "host/grouping/PairEvidence.h"

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace grouptracker {

/// People who are together at a tick, and the group that they are.
struct Gathering {
  static constexpr std::size_t core = 2;  ///< members who carry an identity

  std::vector<PersonId> people;           ///< ascending
  std::map<GroupId, std::size_t> before;  ///< how many were in which group
  double evidence = 0.0;                  ///< mean of the pairs, log-odds
  std::optional<GroupId> id;
};
using Gatherings = std::vector<Gathering>;

/// Tells when a group splits. The evidence, which sees a look-ahead, knows it before anybody can
/// see it: the parts are held together until they are two metres apart, or the look-ahead is over.
class GroupPartings {
 public:
  /// `lookAhead`: seconds of the future that the evidence sees.
  explicit GroupPartings(double lookAhead) : m_lookAhead(lookAhead) {}

  /// Unites the gatherings of a tick that are parts of one group still.
  void holdTogether(const TickBeliefs& tick, Gatherings& gatherings);

 private:
  double m_lookAhead;                 ///< seconds
  std::map<GroupId, double> m_since;  ///< when a group began to fall apart, seconds
};

}  // namespace grouptracker
