#include "fuzz/FuzzedInput.h"
#include "host/output/RunReplay.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) {
    RunReplay run(in, fuzzedName);
    for (RunStep step; run.next(step);) {
    }
  });
}

}  // namespace grouptracker
