#pragma once

#include "tracker/tracking/FrameMembers.h"

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
