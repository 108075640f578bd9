#include "host/run/BuiltInParameters.h"

#include "host/base/OutputError.h"
#include "host/run/ParameterFile.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>
#include <fmt/format.h>

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

/// Whether the file holds the text now.
bool isWritten(const QString& path, const std::string& text) {
  QSaveFile file(path);
  return file.open(QIODevice::WriteOnly) &&
         file.write(text.data(), static_cast<qint64>(text.size())) ==
             static_cast<qint64>(text.size()) &&
         file.commit();
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

std::string writeBuiltInParameters(double framesPerSecond) {
  const std::string text = builtInParameters(framesPerSecond);
  const QString name =
      QString::fromStdString(fmt::format("/grouptracker-parameters-{:g}.txt", framesPerSecond));
  const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  for (const QString& folder : {cache, QDir::tempPath()}) {
    if (QDir().mkpath(folder) && isWritten(folder + name, text)) {
      return (folder + name).toStdString();
    }
  }
  throw OutputError((QDir::tempPath() + name).toStdString(), "cannot be written");
}

}  // namespace grouptracker
