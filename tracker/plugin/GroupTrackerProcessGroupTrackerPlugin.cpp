#include "tracker/plugin/GroupTrackerProcessGroupTrackerPlugin.h"

#include "tracker/plugin/GroupTrackerProcessGroupTracker.h"

#include <mox/moxAbstractObjectPrivate.h>

class GroupTrackerProcessGroupTrackerPluginPrivate : public moxAbstractObjectPrivate {
 public:
  using moxAbstractObjectPrivate::moxAbstractObjectPrivate;
};

GroupTrackerProcessGroupTrackerPlugin::GroupTrackerProcessGroupTrackerPlugin(QObject* parent)
    : moxPlugin(parent), m_private(new GroupTrackerProcessGroupTrackerPluginPrivate(this)) {}

GroupTrackerProcessGroupTrackerPlugin::~GroupTrackerProcessGroupTrackerPlugin() = default;

bool GroupTrackerProcessGroupTrackerPlugin::initialize() {
  if (!GroupTrackerProcessGroupTracker::registered()) {
    GroupTrackerProcessGroupTracker::logError(
        "Unable to register GroupTrackerProcessGroupTracker type");
  }
  return true;
}

bool GroupTrackerProcessGroupTrackerPlugin::uninitialize() {
  return true;
}

QString GroupTrackerProcessGroupTrackerPlugin::name() const {
  return QStringLiteral("GroupTrackerProcessGroupTrackerPlugin");
}

QString GroupTrackerProcessGroupTrackerPlugin::description() const {
  return {};
}

QStringList GroupTrackerProcessGroupTrackerPlugin::tags() const {
  return {};
}

QStringList GroupTrackerProcessGroupTrackerPlugin::types() const {
  return {QStringLiteral("GroupTrackerProcessGroupTracker")};
}

QString GroupTrackerProcessGroupTrackerPlugin::parameterProblem(const QString& fileName) const {
  return GroupTrackerProcessGroupTracker::parameterProblem(fileName);
}
