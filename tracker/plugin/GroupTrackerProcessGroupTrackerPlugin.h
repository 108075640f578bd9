#pragma once

#include <mox/moxPlugin.h>

#include <QScopedPointer>

class GroupTrackerProcessGroupTrackerPluginPrivate;

/// The face of the library towards the framework: registers the group-tracker process and names it.
class GroupTrackerProcessGroupTrackerPlugin : public moxPlugin {
  Q_OBJECT
  Q_INTERFACES(moxPlugin)
  Q_PLUGIN_METADATA(IID "fr.vorta.mox/0.1.0")
 public:
  explicit GroupTrackerProcessGroupTrackerPlugin(QObject* parent = nullptr);
  ~GroupTrackerProcessGroupTrackerPlugin() override;

  bool initialize() override;
  bool uninitialize() override;
  QString name() const override;
  QString description() const override;
  QStringList tags() const override;
  QStringList types() const override;
  /// `GroupTrackerProcessGroupTracker::parameterProblem()` for hosts that have loaded the plugin
  /// and no headers of it:
  ///
  ///     QString problem;
  ///     QMetaObject::invokeMethod(loader.instance(), "parameterProblem",
  ///                               Q_RETURN_ARG(QString, problem), Q_ARG(QString, file));
  Q_INVOKABLE QString parameterProblem(const QString& fileName) const;

 private:
  QScopedPointer<GroupTrackerProcessGroupTrackerPluginPrivate> m_private;
};
