#pragma once

#include <cstdint>

namespace grouptracker {

/// What the tracker, in its lines and properties, says in place of an id or the number of a frame
/// where there is none.
inline constexpr int none = -1;

/// An id as everybody knows it, of one that the tracker shows with a sign; `none` stays.
constexpr std::int64_t knownId(std::int64_t shown) {
  return shown >= none ? shown : shown + (std::int64_t{1} << 32);
}

}  // namespace grouptracker
