#include "fuzz/FuzzedInput.h"
#include "host/input/SceneContextReader.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) { readSceneContext(in, fuzzedName); });
}

}  // namespace grouptracker
