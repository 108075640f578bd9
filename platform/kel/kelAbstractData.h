#pragma once

#include <kel/kelExport.h>

#include <QMap>
#include <QString>
#include <QVariant>

/// Base of the platform's records: a map of named properties beside the fixed fields.
class KEL_EXPORT kelAbstractData {
 public:
  kelAbstractData() = default;
  kelAbstractData(const kelAbstractData&) = default;
  kelAbstractData& operator=(const kelAbstractData&) = default;
  virtual ~kelAbstractData();

  /// Sets a named property, replacing an earlier value.
  void addSpecificProperty(const QString& name, const QVariant& value);
  /// All named properties.
  const QMap<QString, QVariant>& getSpecificProperties() const { return m_properties; }

 private:
  QMap<QString, QVariant> m_properties;
};
