#include "fuzz/FuzzedInput.h"
#include "host/run/ParameterFile.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) { readParameterFile(in, fuzzedName); });
}

}  // namespace grouptracker
