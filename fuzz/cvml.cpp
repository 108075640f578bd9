#include "CvmlReader.h"
#include "FuzzedInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) { readAll(*readCvml(in, fuzzedName)); });
}
