#pragma once

#include <mox/moxExport.h>

#include <QObject>
#include <QString>

/// A step of a processing chain that the framework creates by type name.
class MOX_EXPORT moxAbstractProcess : public QObject {
  Q_OBJECT
 public:
  explicit moxAbstractProcess(QObject* parent = nullptr);
  ~moxAbstractProcess() override;

  /// The type name under which the factory knows the process.
  virtual QString identifier() const = 0;
  /// Takes over the state of another process of the same type.
  virtual void copy(const moxAbstractProcess& other) = 0;
  /// One-time set-up before the first `process()`; true when the process is ready.
  virtual bool init() = 0;
  /// Works on the input that was set before the call.
  virtual void process() = 0;
};
