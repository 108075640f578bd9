#include "fuzz/FuzzedInput.h"
#include "host/explain/DecisionLog.h"
#include "host/explain/Explainer.h"

namespace grouptracker {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) {
    constexpr double threshold = 4.0;
    Explainer explainer(threshold);
    for (const RunStep& step : DecisionLog::read(in, fuzzedName, nullptr).steps()) {
      explainer.add(step);
    }
    explainer.explainAll();
  });
}

}  // namespace grouptracker
