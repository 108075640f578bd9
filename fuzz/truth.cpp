#include "fuzz/FuzzedInput.h"
#include "host/evaluation/TruthReader.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [&](std::istream& in) {
    size > 0 && *data == '{' ? readGroupsPerFrame(in, fuzzedName) : readGroupLists(in, fuzzedName);
  });
}

}  // namespace grouptracker
