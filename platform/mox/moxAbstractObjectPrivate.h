#pragma once

#include <QObject>

/// Base of the private parts of framework objects: keeps the way back to the object that owns it.
class moxAbstractObjectPrivate {
 public:
  /// Binds the private part to its owner; the owner outlives it.
  explicit moxAbstractObjectPrivate(QObject* owner = nullptr) : q(owner) {}
  virtual ~moxAbstractObjectPrivate() = default;

  QObject* q;  ///< the owning object, not owned

 protected:
  moxAbstractObjectPrivate(const moxAbstractObjectPrivate&) = default;
  moxAbstractObjectPrivate& operator=(const moxAbstractObjectPrivate&) = delete;
};
