#include <kel/kelAbstractData.h>
#include <kel/kelAbstractDataCalibration.h>
#include <kel/kelDataActor.h>
#include <kel/kelDataLinkedPhysicalObject.h>

#include <algorithm>
#include <utility>

// What the records do beyond holding values.

kelAbstractData::~kelAbstractData() = default;

void kelAbstractData::addSpecificProperty(const QString& name, const QVariant& value) {
  m_properties.insert(name, value);
}

kelAbstractDataCalibration::~kelAbstractDataCalibration() = default;

kelDataActor::~kelDataActor() = default;

void kelDataActor::addLinkedPhysicalObject(
    const QSharedPointer<kelDataLinkedPhysicalObject>& object) {
  m_objects.push_back(object);
}

void kelDataActor::removeLinkedPhysicalObject(
    const QSharedPointer<kelDataLinkedPhysicalObject>& object) {
  const auto first = std::find(m_objects.begin(), m_objects.end(), object);
  if (first != m_objects.end()) {
    m_objects.erase(first);
  }
}

kelDataLinkedPhysicalObject::kelDataLinkedPhysicalObject(
    unsigned int ident, QSharedPointer<kelDataPhysicalObject> object)
    : m_ident(ident), m_object(std::move(object)) {}

void kelDataLinkedPhysicalObject::addFatherLink(
    const QSharedPointer<kelDataLinkedPhysicalObject>& father,
    const QSharedPointer<kelDataLinkedPhysicalObject>& son, double reliability) {
  son->m_fatherLinks.push_back(
      QSharedPointer<kelDataLinkedPhysicalObjectLink>::create(father, son, reliability));
}

std::list<QSharedPointer<kelDataLinkedPhysicalObject>> kelDataLinkedPhysicalObject::getFathers()
    const {
  std::list<QSharedPointer<kelDataLinkedPhysicalObject>> fathers;
  for (const auto& link : m_fatherLinks) {
    if (auto father = link->getFather()) {
      fathers.push_back(std::move(father));
    }
  }
  return fathers;
}
