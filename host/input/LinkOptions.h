#pragma once

#include <cstddef>

/// How observations are linked to earlier ones when the input itself has no links.
struct LinkOptions {
  std::size_t chainLength = 30;  ///< observations of a person that its actor lists
  std::size_t ownLinks = 5;      ///< latest observations of the person itself that are linked

  /// Links to other persons' observations of the step before, without which a third person can
  /// hardly join a pair: the reliability falls from `neighbourStrength` at distance 0 to nothing at
  /// `neighbourRadius`.
  double neighbourStrength = 0.3;
  double neighbourRadius = 2.0;  ///< metres
};
