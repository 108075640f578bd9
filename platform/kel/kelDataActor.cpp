#include <kel/kelDataActor.h>

kelDataActor::~kelDataActor() = default;

void kelDataActor::addLinkedPhysicalObject(
    const QSharedPointer<kelDataLinkedPhysicalObject>& object) {
  m_objects.push_back(object);
}
