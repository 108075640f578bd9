#include "host/run/ParameterFile.h"
#include "host/run/RunParameters.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <sstream>

// Outside of the namespace, as the macro declares a function.
static void loadParameters() {
  Q_INIT_RESOURCE(run);
}

namespace grouptracker {

namespace {

const char* const sample = ":/parameters/walking.txt";
constexpr double sampleRate = 2.5;      // frames a second that the sample is for
constexpr double largestWeight = 1000;  // the usual limit
constexpr double longestWindow = 25;    // frames; more cost time and gain little

ParameterFile readSample() {
  loadParameters();
  QFile file(sample);
  file.open(QIODevice::ReadOnly);
  std::istringstream text(file.readAll().toStdString());
  return readParameterFile(text, sample);
}

}  // namespace

std::string builtInParameters(double framesPerSecond) {
  const ParameterFile file = readSample();
  const double window = file.number("temporalWinSize:");
  const double factor = framesPerSecond / sampleRate;
  const double longer = std::min(factor, longestWindow / window);
  const auto frames = [longer](double number) {
    return std::max(1.0, std::round(number * longer));
  };
  const double memory = frames(file.number("temporalWinForRemoval:"));
  // Speeds are metres a frame, so the same difference is a smaller number at a higher rate.
  const double speedWeight = std::max(1.0, std::round(file.number("speedSimWeight:") * factor));
  return file.with({{"temporalWinSize:", frames(window)},
                    {"temporalWinForRemoval:", std::max(memory, frames(window) + 5.0)},
                    {"speedSimWeight:", std::min(speedWeight, largestWeight)}});
}

}  // namespace grouptracker
