#pragma once

#include "host/base/InputError.h"
#include "host/people/InputFrame.h"
#include "host/people/ObservationSource.h"

#include <cstddef>
#include <cstdint>
#include <ios>
#include <sstream>
#include <string>

namespace grouptracker {

/// The name under which readers know the fuzzed bytes.
inline const char* const fuzzedName = "fuzzed";

/// Gives the bytes to a reader as a stream. Saying that the input is bad is all that a reader may
/// do about it; anything else that leaves it ends the fuzzing.
template <typename Read>
int readFuzzed(const std::uint8_t* data, std::size_t size, const Read& read) {
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  in.exceptions(std::ios::badbit);
  try {
    read(in);
  } catch (const InputError&) {
    return 0;
  }
  return 0;
}

// To the end, however many empty frames fill a gap: what takes for ever there is a fault, too.
inline void readAll(FrameSource& source) {
  InputFrame frame;
  while (source.next(frame)) {
  }
}

inline void readAll(ObservationSource& source) {
  ObservationStep step;
  while (source.next(step)) {
  }
}

}  // namespace grouptracker
