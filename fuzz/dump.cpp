#include "fuzz/FuzzedInput.h"
#include "host/explain/MobileDump.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) {
    MobileDump dump(in, fuzzedName);
    for (const std::uint32_t frame : {1U, 2U, 24U, 4294967295U}) {
      dump.at(frame);
    }
  });
}

}  // namespace grouptracker
