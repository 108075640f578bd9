#include "fuzz/FuzzedInput.h"
#include "host/camera/GroundPlaneCalibration.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(
      data, size, [](std::istream& in) { readHomography(in, fuzzedName, ImageOrder::rowColumn); });
}

}  // namespace grouptracker
