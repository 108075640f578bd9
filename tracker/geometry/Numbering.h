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

/// No group or no mobile, where ids are compared. The platform's ids have no sign and go up to
/// 2^32 - 1; here they are read with one, so that none is below all that it usually gives.
constexpr int noId = -1;

/// An id as the platform and the given look-ups have it; 0xFFFFFFFF for none.
constexpr unsigned int unsignedId(int id) {
  return static_cast<unsigned int>(id);
}

/// The same the other way round.
constexpr int signedId(unsigned int id) {
  return static_cast<int>(id);
}
