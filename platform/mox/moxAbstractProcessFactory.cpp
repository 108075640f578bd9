#include <mox/moxAbstractProcessFactory.h>

moxAbstractProcessFactory& moxAbstractProcessFactory::instance() {
  static moxAbstractProcessFactory factory;
  return factory;
}

bool moxAbstractProcessFactory::registerProcessType(const QString& type, Creator creator,
                                                    const QString& interfaceName) {
  if (creator == nullptr || m_entries.contains(type)) {
    return false;
  }
  m_entries.insert(type, {creator, interfaceName});
  return true;
}

moxAbstractProcess* moxAbstractProcessFactory::create(const QString& type) const {
  const auto entry = m_entries.constFind(type);
  return entry == m_entries.constEnd() ? nullptr : entry->creator();
}

QStringList moxAbstractProcessFactory::types(const QString& interfaceName) const {
  QStringList names;
  for (auto entry = m_entries.constBegin(); entry != m_entries.constEnd(); ++entry) {
    if (entry->interfaceName == interfaceName) {
      names.append(entry.key());
    }
  }
  names.sort();
  return names;
}
