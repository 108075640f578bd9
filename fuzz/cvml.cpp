#include "fuzz/FuzzedInput.h"
#include "host/input/CvmlReader.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) { readAll(*readCvml(in, fuzzedName)); });
}

}  // namespace grouptracker
