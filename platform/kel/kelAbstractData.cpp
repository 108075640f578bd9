#include <kel/kelAbstractData.h>

kelAbstractData::~kelAbstractData() = default;

void kelAbstractData::addSpecificProperty(const QString& name, const QVariant& value) {
  m_properties.insert(name, value);
}
