#pragma once

#include <QSharedPointer>
#include <QWeakPointer>

class kelDataLinkedPhysicalObject;

/// A weighted link from a mobile of an earlier frame, the father, to one of a later frame, the son.
/// Both ends are held weakly: the son owns the link, and a chain of fathers must not keep a whole
/// track in memory nor fall like dominoes when its last mobile is released.
class kelDataLinkedPhysicalObjectLink {
 public:
  kelDataLinkedPhysicalObjectLink(const QSharedPointer<kelDataLinkedPhysicalObject>& father,
                                  const QSharedPointer<kelDataLinkedPhysicalObject>& son,
                                  double reliability)
      : m_father(father), m_son(son), m_reliability(reliability) {}

  /// The older mobile; null once it is gone.
  QSharedPointer<kelDataLinkedPhysicalObject> getFather() const { return m_father.toStrongRef(); }
  /// The newer mobile; null once it is gone.
  QSharedPointer<kelDataLinkedPhysicalObject> getSon() const { return m_son.toStrongRef(); }
  /// How sure the upstream tracker is that the son continues the father; usually within [0, 1].
  double getReliability() const { return m_reliability; }

 private:
  QWeakPointer<kelDataLinkedPhysicalObject> m_father;
  QWeakPointer<kelDataLinkedPhysicalObject> m_son;
  double m_reliability;
};
