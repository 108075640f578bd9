#include "fuzz/FuzzedInput.h"
#include "host/live/MessageMap.h"
#include "host/live/PeopleMessage.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) {
    PeopleMessageParser parser(MessageMap::read(in, fuzzedName), false);
    try {
      parser.parse(R"({"time": 1, "frame": 2, "people": [{"id": 3, "x": 4, "y": 5, "box": [6]}]})");
    } catch (const ValueProblem&) {
      return;  // the map does not fit
    }
  });
}

}  // namespace grouptracker
