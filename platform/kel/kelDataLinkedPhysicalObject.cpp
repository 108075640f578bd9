#include <kel/kelDataLinkedPhysicalObject.h>

#include <utility>

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
