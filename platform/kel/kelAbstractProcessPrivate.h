#pragma once

#include <kel/CSynchronizer.h>
#include <kel/kelAbstractDataCalibration.h>
#include <kel/kelDataContext.h>
#include <mox/moxAbstractObjectPrivate.h>

#include <QMap>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

/// State that every process of the platform has.
class kelAbstractProcessPrivate : public moxAbstractObjectPrivate {
 public:
  using moxAbstractObjectPrivate::moxAbstractObjectPrivate;

  CSynchronizer synchronizer;
  QMap<QString, QVariant> properties;                      ///< the framework's own
  QSharedPointer<kelAbstractDataCalibration> calibration;  ///< set by the host; may be null
  QSharedPointer<kelDataContext> sceneContext;             ///< set by the host; may be null
};
