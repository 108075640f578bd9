#include "host/run/PluginLoader.h"

#include "host/base/InputError.h"

#include <mox/moxAbstractProcessFactory.h>
#include <mox/moxPlugin.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QPluginLoader>
#include <QStringList>

namespace grouptracker {

namespace {

const char* const processType = "GroupTrackerProcessGroupTracker";
const char* const pluginName = "libGroupTrackerProcessGroupTrackerPlugin.so";

/// The first existing default place, or the first of all when there is none.
QString defaultPlugin() {
  const QString prefix = QCoreApplication::applicationDirPath() + "/../";
  const QStringList folders{"lib/grouptracker/plugins/",
                            GROUPTRACKER_LIBDIR "/grouptracker/plugins/"};
  for (const QString& folder : folders) {
    if (QFileInfo::exists(prefix + folder + pluginName)) {
      return prefix + folder + pluginName;
    }
  }
  return prefix + folders.front() + pluginName;
}

QString fileOf(const std::string& pluginFile) {
  return pluginFile.empty() ? QFileInfo(defaultPlugin()).absoluteFilePath()
                            : QString::fromStdString(pluginFile);
}

}  // namespace

std::string pluginPath(const std::string& pluginFile) {
  return fileOf(pluginFile).toStdString();
}

void preloadGroupTracker(const std::string& pluginFile) {
  QPluginLoader loader(fileOf(pluginFile));
  loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
  loader.load();  // a failure is told by whoever needs the plugin
}

std::unique_ptr<kelAbstractProcessGroupTracker> loadGroupTracker(const std::string& pluginFile) {
  const QString file = fileOf(pluginFile);
  const auto fail = [&](const QString& problem) {
    return InputError(file.toStdString(), problem.toStdString());
  };
  if (!QFileInfo::exists(file)) {
    throw fail("there is no such plugin");
  }
  QPluginLoader loader(file);
  auto* const plugin = qobject_cast<moxPlugin*>(loader.instance());
  if (plugin == nullptr) {
    throw fail(loader.isLoaded() ? "not a plugin of this framework" : loader.errorString());
  }
  plugin->initialize();
  std::unique_ptr<moxAbstractProcess> process(
      moxAbstractProcessFactory::instance().create(processType));
  auto* const tracker = qobject_cast<kelAbstractProcessGroupTracker*>(process.get());
  if (tracker == nullptr) {
    throw fail(QString("the plugin brings no %1").arg(processType));
  }
  static_cast<void>(process.release());
  return std::unique_ptr<kelAbstractProcessGroupTracker>(tracker);
}

}  // namespace grouptracker
