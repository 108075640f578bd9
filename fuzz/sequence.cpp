#include "FuzzedInput.h"
#include "MotSequence.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) { readSequenceInfo(in, fuzzedName); });
}
