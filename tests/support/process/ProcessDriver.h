#pragma once

#include "tests/support/base/Texts.h"
#include "tracker/plugin/GroupTrackerProcessGroupTracker.h"

#include <kel/kelDataActor.h>
#include <kel/kelDataImage.h>

#include <QList>
#include <QMap>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

#include <string>

/// A process that the present values of the parameters are handed to, as a file, and that is then
/// given one frame after the other.
class ProcessDriver {
 public:
  using Actors = QList<QSharedPointer<kelDataActor>>;

  /// No dump of the mobiles unless `specific` asks for it.
  explicit ProcessDriver(const QMap<QString, QVariant>& specific = {{"mobileDump", false}});

  /// For what is to be set before the first frame.
  GroupTrackerProcessGroupTracker& process() { return m_process; }
  /// Processes one frame, after the initialisation if it is the first; returns the groups' actors.
  Actors step(const Actors& input, const QSharedPointer<kelDataImage>& image = {});

 private:
  TempFolder m_folder;
  GroupTrackerProcessGroupTracker m_process;
};

/// One line with all that an actor says: "0: 101 102 at (0.5, 0, 0) in (100, 100, 40, 60),
/// AvgIntraDist "1", ..."; the place only when there are mobiles, texts in quotation marks.
std::string toText(const kelDataActor& actor);
/// A line per actor.
std::string toText(const ProcessDriver::Actors& actors);
