#include "tracker/plugin/GroupTrackerProcessGroupTracker.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupColor.h"
#include "tracker/geometry/ContextReader.h"
#include "tracker/geometry/Converter.h"
#include "tracker/parameters/ParameterTable.h"
#include "tracker/plugin/GroupTrackerProcessGroupTrackerPrivate.h"
#include "tracker/plugin/ParameterReader.h"

#include <mox/moxAbstractProcessFactory.h>
#include <mox/moxLogEngine.h>
#include <mox/moxLogger.h>

#include <QFile>
#include <QFileInfo>

#include <fstream>
#include <string>
#include <utility>

namespace {

constexpr unsigned int errorLevel = 17;
constexpr float nothingFound =
    2147483648.0F;  // a scene bound without a zone; negative for a maximum

std::string mobileDumpFile(const QVariant& wish) {
  if (!wish.isValid() || (wish.type() == QVariant::Bool && wish.toBool())) {
    return usualMobileDump(GroupExtension::imagesFolder);
  }
  return wish.type() == QVariant::String ? wish.toString().toStdString() : std::string();
}

}  // namespace

moxAbstractProcess* createGroupTrackerProcessGroupTracker() {
  return new GroupTrackerProcessGroupTracker;
}

GroupTrackerProcessGroupTracker::GroupTrackerProcessGroupTracker()
    : kelAbstractProcessGroupTracker(new GroupTrackerProcessGroupTrackerPrivate, nullptr) {}

GroupTrackerProcessGroupTracker::GroupTrackerProcessGroupTracker(
    const GroupTrackerProcessGroupTracker& other)
    : kelAbstractProcessGroupTracker(
          new GroupTrackerProcessGroupTrackerPrivate(
              static_cast<const GroupTrackerProcessGroupTrackerPrivate&>(*other.d_ptr)),
          other.parent()) {}

GroupTrackerProcessGroupTracker& GroupTrackerProcessGroupTracker::operator=(
    const GroupTrackerProcessGroupTracker& other) {
  copy(other);
  return *this;
}

GroupTrackerProcessGroupTracker::~GroupTrackerProcessGroupTracker() = default;

GroupTrackerProcessGroupTrackerPrivate& GroupTrackerProcessGroupTracker::d() {
  return static_cast<GroupTrackerProcessGroupTrackerPrivate&>(*d_ptr);
}

bool GroupTrackerProcessGroupTracker::registered() {
  return moxAbstractProcessFactory::instance().registerProcessType(
      QStringLiteral("GroupTrackerProcessGroupTracker"), createGroupTrackerProcessGroupTracker,
      QStringLiteral("kelAbstractProcessGroupTracker"));
}

void GroupTrackerProcessGroupTracker::logError(const char* message) {
  if (moxLogger::instance().level() <= errorLevel) {
    moxLogEngine(errorLevel, true).stream() << message;
  }
}

QString GroupTrackerProcessGroupTracker::identifier() const {
  return QStringLiteral("GroupTrackerProcessGroupTracker");
}

// The base class is meant to copy first, but this is the call it makes: for any other process than
// this one the copy never comes back. Nobody copies a tracker in the middle of a video.
void GroupTrackerProcessGroupTracker::copy(const moxAbstractProcess& other) {
  if (&other == this) {
    return;
  }
  copy(other);
  if (identifier() == other.identifier()) {
    return;
  }
  logError("Copy can't be done at the kelAbstractProcessAcquisitor level.");
}

bool GroupTrackerProcessGroupTracker::init() {
  if (d().initialised) {
    return true;
  }
  const Diagnostics::FlushAtExit flushAtExit;
  Diagnostics::setEnabled(d().specificParameters.value("diagnostics", true).toBool());
  GroupColor::init();
  Converter::init(d().calibration);
  initParameters();
  d().frameCounter = 0;
  initOutputs();
  initSceneBounds();
  d().initialised = true;
  return true;
}

void GroupTrackerProcessGroupTracker::initOutputs() {
  const auto& wishes = d().specificParameters;
  d().tracker.setMobileDump(mobileDumpFile(wishes.value("mobileDump")),
                            wishes.value("mobileDumpDescriptor", -1).toInt());
  if (GroupExtension::extDisplayOn || GroupExtension::saveOutput) {
    d().extension->init();
  }
}

void GroupTrackerProcessGroupTracker::initSceneBounds() {
  float minX = 0.0F;
  float maxX = 0.0F;
  float minY = 0.0F;
  float maxY = 0.0F;
  ContextReader().read(minX, maxX, minY, maxY, d().sceneContext);
  Diagnostics::print("minX {:f}, maxX {:f}, minY {:f}, maxY {:f}\n", minX, maxX, minY, maxY);
  auto& tracker = d().tracker;
  if (minX != nothingFound) {
    tracker.setSceneMinX(minX);
  }
  if (maxX != -nothingFound) {
    tracker.setSceneMaxX(maxX);
  }
  if (minY != nothingFound) {
    tracker.setSceneMinY(minY);
  }
  if (maxY != -nothingFound) {
    tracker.setSceneMaxY(maxY);
  }
}

void GroupTrackerProcessGroupTracker::initParameters() {
  getSpecificParameters();
}

QMap<QString, QVariant> GroupTrackerProcessGroupTracker::getSpecificParameters() {
  if (!d().parametersRead) {
    readSpecificParameters(d().parameterFileName);
    d().parametersRead = true;
  }
  return d().specificParameters;
}

bool GroupTrackerProcessGroupTracker::setSpecificParameters(QMap<QString, QVariant> parameters) {
  d().specificParameters = std::move(parameters);
  return true;
}

void GroupTrackerProcessGroupTracker::readSpecificParameters(const std::string& fileName) {
  Diagnostics::print("parameter file name: {}\n", fileName);
  Diagnostics::flush();
  std::ifstream file(fileName);
  const ParameterValues before = parameterValues();
  readParameters(file);
  warnOfOtherProcesses(before);
}

void GroupTrackerProcessGroupTracker::warnOfOtherProcesses(const ParameterValues& before) {
  const int others = ParameterUser::count() - (d().parameterUser ? 1 : 0);
  d().parameterUser.emplace();
  const std::string changed = changedLabels(before);
  if (others > 0 && !changed.empty()) {
    logError(("Parameters are shared by all processes, these change for the " +
              std::to_string(others) + " before: " + changed)
                 .c_str());
  }
}

QString GroupTrackerProcessGroupTracker::parameterProblem(const QString& fileName) {
  const QFileInfo place(fileName);
  if (place.exists() && !place.isFile()) {
    return QStringLiteral("no regular file");  // reading would wait, or take away what is read
  }
  std::ifstream file(QFile::encodeName(fileName).toStdString());
  return file.is_open() ? QString::fromStdString(::parameterProblem(file))
                        : QStringLiteral("cannot be opened");
}
