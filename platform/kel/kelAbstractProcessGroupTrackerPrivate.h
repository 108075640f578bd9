#pragma once

#include <kel/kelAbstractProcessPrivate.h>
#include <kel/kelDataActor.h>
#include <kel/kelDataImage.h>

#include <QList>
#include <QMap>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

#include <string>

/// State of a group-tracker process that the host sets and reads.
class kelAbstractProcessGroupTrackerPrivate : public kelAbstractProcessPrivate {
 public:
  using kelAbstractProcessPrivate::kelAbstractProcessPrivate;

  QList<QSharedPointer<kelDataActor>> actors;  ///< input of a frame, then input and output
  QSharedPointer<kelDataImage> currentImage;   ///< the frame's image; may be null
  std::string parameterFileName;
  bool initialised = false;
  bool parametersRead = false;
  unsigned int frameCounter = 0;  ///< frames processed so far
  QMap<QString, QVariant> specificParameters;
};
