#pragma once

#include <kel/kelAbstractDataCalibration.h>
#include <kel/kelDataActor.h>
#include <kel/kelDataContext.h>
#include <kel/kelDataImage.h>
#include <kel/kelExport.h>
#include <mox/moxAbstractProcess.h>

#include <QList>
#include <QMap>
#include <QScopedPointer>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

#include <string>

class kelAbstractProcessGroupTrackerPrivate;

/// Interface of group trackers: each frame the host sets actors and image, calls `process()` and
/// reads the actors again, which then end with one actor per group.
class KEL_EXPORT kelAbstractProcessGroupTracker : public moxAbstractProcess {
  Q_OBJECT
 public:
  ~kelAbstractProcessGroupTracker() override;

  /// Replaces the actor list by the frame's input.
  void setActors(const QList<QSharedPointer<kelDataActor>>& actors);
  /// The input actors and, after `process()`, the output actors behind them.
  const QList<QSharedPointer<kelDataActor>>& actors() const;
  /// The frame's image; null when there is none.
  void setImage(const QSharedPointer<kelDataImage>& image);
  /// The file with the tracker's parameters; read by `init()`.
  void setParameterFileName(const std::string& fileName);
  /// The camera; to be set before `init()`.
  void setCalibration(const QSharedPointer<kelAbstractDataCalibration>& calibration);
  /// The scene's description; to be set before `init()`.
  void setSceneContext(const QSharedPointer<kelDataContext>& context);

  /// Reads the parameters if that has not been done yet.
  virtual void initParameters() = 0;
  /// The named parameters of this process instance.
  virtual QMap<QString, QVariant> getSpecificParameters() = 0;
  /// Replaces the named parameters; true when they were taken.
  virtual bool setSpecificParameters(QMap<QString, QVariant> parameters) = 0;

 protected:
  /// Takes ownership of the private part.
  kelAbstractProcessGroupTracker(kelAbstractProcessGroupTrackerPrivate* d, QObject* parent);

  QScopedPointer<kelAbstractProcessGroupTrackerPrivate> d_ptr;
};
