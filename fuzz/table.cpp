#include "fuzz/FuzzedInput.h"
#include "host/input/TableReader.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) {
    const TrackRecording recording = readTable(in, fuzzedName, TableChoice());
    readAll(*recording.people);
  });
}

}  // namespace grouptracker
