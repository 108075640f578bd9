#pragma once

#include <cerrno>
#include <cstring>
#include <string>

namespace grouptracker {

/// What the system refused and why, such as "cannot be written: No space left on device"; `error`
/// is a value of errno.
inline std::string systemProblem(const char* refused, int error = errno) {
  return std::string(refused) + ": " + std::strerror(error);
}

}  // namespace grouptracker
