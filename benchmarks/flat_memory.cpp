// Runs a process for as long as asked, with 20 people coming and going, and shows that neither the
// memory nor the time of a frame grows: flat_memory [FRAMES], 100000 by default.

#include "benchmarks/MeasuredProcess.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int usualFrames = 100000;
constexpr int rows = 20;
constexpr double kibibytesPerMebibyte = 1024.0;

double residentMebibytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word == "VmRSS:") {
      double kibibytes = 0.0;
      status >> kibibytes;
      return kibibytes / kibibytesPerMebibyte;
    }
  }
  return 0.0;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

int main(int argc, char** argv) {
  const int frames = argc > 1 ? std::atoi(argv[1]) : usualFrames;
  constexpr int stay = 400;
  MeasuredProcess process(MeasuredProcess::Options{{20, SteadyScene::Grouping::mixed, stay}});
  fmt::print(stderr, "{:>10} {:>14} {:>18}\n", "frame", "resident MiB", "median ms a frame");
  const int block = std::max(frames / rows, 1);
  for (int done = 0; done < frames; done += block) {
    std::vector<double> seconds;
    for (int i = 0; i < block; ++i) {
      seconds.push_back(process.step());
    }
    fmt::print(stderr, "{:>10} {:>14.1f} {:>18.3f}\n", done + block, residentMebibytes(),
               1000 * median(seconds));
  }
  return 0;
}
