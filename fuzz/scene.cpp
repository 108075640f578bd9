#include "fuzz/FuzzedInput.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/input/SceneReader.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto camera = QSharedPointer<GroundPlaneCalibration>::create(
      cv::Matx33d(0.02, 0, -7, 0, -0.03, 14, 0, -0.0005, 1), cv::Point3d(0, 0, 6));
  return readFuzzed(data, size, [](std::istream& in) {
    SceneReader scene(in, fuzzedName, {}, camera);
    readAll(scene);
  });
}

}  // namespace grouptracker
