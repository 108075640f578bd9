#pragma once

namespace grouptracker {

/// What the tracker, in its lines and properties, says in place of an id or the number of a frame
/// where there is none.
inline constexpr int none = -1;

}  // namespace grouptracker
