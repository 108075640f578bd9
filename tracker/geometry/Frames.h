#pragma once

#include "tracker/geometry/Util.h"

/// No frame: a group that has not ended, one that has not begun.
constexpr int noFrame = -1;

/// The first frame there is.
constexpr int earliestFrame = 1;

/// The frame that is decided, reported and drawn when `frame` has just been taken in:
/// "temporalWinSize:" frames back. Formed without sign, as the parameter is; below 1 there is none
/// yet.
inline int delayed(unsigned int frame) {
  return static_cast<int>(frame - Util::temporalWinSize);
}
