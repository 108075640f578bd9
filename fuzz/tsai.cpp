#include "fuzz/FuzzedInput.h"
#include "host/camera/TsaiCalibration.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) {
    const TsaiCalibration camera(readTsaiCamera(in, fuzzedName));
    camera.worldToImage(camera.imageToWorld({100, 200}, 0.0));
  });
}

}  // namespace grouptracker
