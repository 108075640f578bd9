#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// The three parts of a group's coherence, before they are weighted.
struct CoherenceParts {
  double distance = 0.0;   ///< metres
  double speed = 0.0;      ///< spread, metres per frame
  double direction = 0.0;  ///< spread

  bool operator==(const CoherenceParts&) const = default;
};

enum class DecisionKind : std::uint8_t {
  founded,             ///< by a pair of mobiles
  foundedByAncestry,   ///< by one mobile that is a group, from its ancestors
  foundedByCluster,    ///< by the mobiles of a cluster
  notFounded,          ///< the ancestors of a mobile that is a group were not coherent enough
  addedByAncestry,     ///< a mobile that is a group joined the group of an ancestor
  notAddedByAncestry,  ///< the same, not coherent enough
  joined,              ///< a person became a member
  left,
  merged,  ///< `other` merged into the group
  split,   ///< from `other`
  ended,
  removed,
};

/// One thing that the tracker decided and said.
struct Decision {
  DecisionKind kind = DecisionKind::founded;
  std::uint32_t frame = 0;          ///< at which it was decided
  std::int32_t processedFrame = 0;  ///< which it is about
  std::optional<int> group;         ///< none when no group came of it
  std::optional<int> other;
  std::vector<std::int64_t> mobiles;
  std::vector<std::int64_t> persons;  ///< of the mobiles, as far as they have one
  std::optional<double> coherence;    ///< a cost: lower is tighter
  std::optional<CoherenceParts> parts;
  std::string reason;  ///< what the mobile dump says about it; empty without one

  bool operator==(const Decision&) const = default;
};

}  // namespace grouptracker
