#pragma once

#include <mox/moxAbstractProcess.h>
#include <mox/moxExport.h>

#include <QHash>
#include <QString>
#include <QStringList>

/// Creates processes by type name. Plugins register their types; the host creates from them.
/// Not thread-safe: plugins are loaded and processes created on one thread.
class MOX_EXPORT moxAbstractProcessFactory {
 public:
  using Creator = moxAbstractProcess* (*)();

  /// The one factory of the program.
  static moxAbstractProcessFactory& instance();

  /// Adds a type; false (and nothing changes) when the type name is taken already.
  bool registerProcessType(const QString& type, Creator creator, const QString& interfaceName);
  /// A new process of the type, owned by the caller; null for an unknown type.
  moxAbstractProcess* create(const QString& type) const;
  /// The registered types that implement the interface, sorted by name.
  QStringList types(const QString& interfaceName) const;

 private:
  struct Entry {
    Creator creator = nullptr;
    QString interfaceName;
  };
  moxAbstractProcessFactory() = default;

  QHash<QString, Entry> m_entries;
};
