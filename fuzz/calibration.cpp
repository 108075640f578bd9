#include "fuzz/FuzzedInput.h"
#include "host/camera/CalibrationReader.h"

#include <sys/mman.h>
#include <unistd.h>

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The reader wants a file's name; this one lies in memory.
  static const int file = ::memfd_create(fuzzedName, 0);
  static const std::string path = "/proc/self/fd/" + std::to_string(file);
  if (::ftruncate(file, 0) != 0 || ::pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) {
    return 0;
  }
  return readFuzzed(data, size, [](std::istream&) { readCalibration(path); });
}

}  // namespace grouptracker
