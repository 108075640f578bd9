#include "fuzz/FuzzedInput.h"
#include "host/input/ObsmatReader.h"
#include "host/people/TrackAssembler.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) {
    TrackAssembler frames(readObsmat(in, fuzzedName), nullptr, LinkOptions());
    readAll(frames);
  });
}

}  // namespace grouptracker
