#pragma once

#include <kel/kelDataLinkedPhysicalObjectLink.h>
#include <kel/kelDataPhysicalObject.h>
#include <kel/kelExport.h>

#include <QSharedPointer>

#include <list>

/// One tracked mobile at one frame with its links to the mobiles it may descend from.
class KEL_EXPORT kelDataLinkedPhysicalObject {
 public:
  kelDataLinkedPhysicalObject(unsigned int ident, QSharedPointer<kelDataPhysicalObject> object);

  /// The mobile id.
  unsigned int getIdent() const { return m_ident; }
  /// What was seen of the mobile; never null.
  const QSharedPointer<kelDataPhysicalObject>& getPhysicalObject() const { return m_object; }

  /// Links `son` to `father`; the link goes to the end of the son's list.
  static void addFatherLink(const QSharedPointer<kelDataLinkedPhysicalObject>& father,
                            const QSharedPointer<kelDataLinkedPhysicalObject>& son,
                            double reliability);
  /// The links to the fathers, in the order in which they were added.
  const std::list<QSharedPointer<kelDataLinkedPhysicalObjectLink>>& getFatherLinks() const {
    return m_fatherLinks;
  }
  /// The fathers that are still there, in the order of the links.
  std::list<QSharedPointer<kelDataLinkedPhysicalObject>> getFathers() const;

 private:
  unsigned int m_ident;
  QSharedPointer<kelDataPhysicalObject> m_object;
  std::list<QSharedPointer<kelDataLinkedPhysicalObjectLink>> m_fatherLinks;
};
