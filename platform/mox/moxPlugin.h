#pragma once

#include <mox/moxExport.h>

#include <QObject>
#include <QString>
#include <QStringList>

/// A loadable extension of the framework; found through `QPluginLoader` by its interface
/// identifier.
class MOX_EXPORT moxPlugin : public QObject {
  Q_OBJECT
 public:
  explicit moxPlugin(QObject* parent = nullptr);
  ~moxPlugin() override;

  /// Registers what the plugin brings; called once after loading.
  virtual bool initialize() = 0;
  /// Called before unloading.
  virtual bool uninitialize() = 0;
  /// The plugin's own name.
  virtual QString name() const = 0;
  /// One paragraph for a person; may be empty.
  virtual QString description() const = 0;
  /// Search words; may be empty.
  virtual QStringList tags() const = 0;
  /// The process types that the plugin registers.
  virtual QStringList types() const = 0;
};

Q_DECLARE_INTERFACE(moxPlugin, "fr.vorta.mox/0.1.0")
