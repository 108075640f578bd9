#include "fuzz/FuzzedInput.h"
#include "host/grouping/EvidenceModel.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size,
                    [](std::istream& in) { EvidenceModel::read(in, fuzzedName).text(); });
}

}  // namespace grouptracker
