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

constexpr int mostFuzzedFrames = 200;  // gaps are filled with empty frames, which say nothing new

inline void readAll(FrameSource& source) {
  InputFrame frame;
  for (int i = 0; i < mostFuzzedFrames && source.next(frame); ++i) {
  }
}

inline void readAll(ObservationSource& source) {
  ObservationStep step;
  for (int i = 0; i < mostFuzzedFrames && source.next(step); ++i) {
  }
}

}  // namespace grouptracker
