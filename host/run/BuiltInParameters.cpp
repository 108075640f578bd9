#include "host/run/BuiltInParameters.h"

#include "host/base/OutputError.h"
#include "host/run/ParameterFile.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

// Outside of the namespace, as the macro declares a function.
static void loadParameters() {
  Q_INIT_RESOURCE(run);
}

namespace grouptracker {

namespace {

/// A sample file and how it is meant.
struct Sample {
  const char* file;
  double window;  ///< seconds of "temporalWinSize:"
  double memory;  ///< seconds of "temporalWinForRemoval:"
};

constexpr Sample walking{":/parameters/walking.txt", 3.2, 7.2};
constexpr Sample video{":/parameters/video.txt", 1.1, 2.5};
constexpr double fastestWalking = 5.0;  // frames a second up to which the first one is better
constexpr double mostFrames = 1000.0;   // the usual limit of both windows

ParameterFile read(const char* sample) {
  loadParameters();
  QFile file(sample);
  file.open(QIODevice::ReadOnly);
  std::istringstream text(file.readAll().toStdString());
  return readParameterFile(text, sample);
}

double framesIn(double seconds, double framesPerSecond) {
  return std::clamp(std::round(seconds * framesPerSecond), 1.0, mostFrames);
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
  const Sample& sample = framesPerSecond <= fastestWalking ? walking : video;
  const double window = framesIn(sample.window, framesPerSecond);
  const double memory = framesIn(sample.memory, framesPerSecond);
  return read(sample.file)
      .with({{"temporalWinSize:", window},
             {"temporalWinForRemoval:", std::max(memory, window + 5.0)}});
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
