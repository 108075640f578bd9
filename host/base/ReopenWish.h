#pragma once

#include <atomic>

namespace grouptracker {

/// The wish of somebody outside that files which were moved away are begun anew under their names,
/// so that logs can be rotated. There is one for the program; files see it when they are written.
namespace reopen_wish {

namespace detail {

inline std::atomic<unsigned> count = 0;
static_assert(std::atomic<unsigned>::is_always_lock_free, "a signal's handler notes it");

}  // namespace detail

inline void note() {
  ++detail::count;
}

/// How often it was wished so far.
inline unsigned count() {
  return detail::count;
}

}  // namespace reopen_wish

}  // namespace grouptracker
