#pragma once

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
