#pragma once

#include "tracker/plugin/ParameterReader.h"

#include <kel/kelAbstractProcessGroupTracker.h>

#include <QString>

#include <string>

class GroupTrackerProcessGroupTrackerPrivate;

/// The process that turns the people of each frame into groups: reads its parameters once, feeds
/// the tracker frame by frame and appends one actor per group to the actor list, for the frame
/// "temporalWinSize:" frames back.
///
/// Named parameters of an instance are read by `init()`: "diagnostics" (false: nothing is printed),
/// "mobileDump" (false: no dump of the mobiles; a text: the dump's file name) and
/// "mobileDumpDescriptor" (an open file that is written to instead of opening that name). The
/// object's property "outputProblem" is set by `process()` when a file could not be written at this
/// frame: the file and what is wrong, a list of two texts. The process itself goes on.
///
/// Null actors, mobiles without an object and null mobiles are passed over with a line on the
/// framework's log; an actor whose current mobile is one of them is passed over as a whole.
///
/// A program may have several processes, one call at a time, but some things exist once for all of
/// them: the parameters, the calibration and whether diagnostics are printed are those of the
/// latest `init()`, which says on the log when it changes parameters of processes that are still
/// there; the ids of groups and their colours go on from process to process, so that no two groups
/// of a program share an id.
class GroupTrackerProcessGroupTracker : public kelAbstractProcessGroupTracker {
  Q_OBJECT
 public:
  GroupTrackerProcessGroupTracker();
  GroupTrackerProcessGroupTracker(const GroupTrackerProcessGroupTracker& other);
  GroupTrackerProcessGroupTracker& operator=(const GroupTrackerProcessGroupTracker& other);
  ~GroupTrackerProcessGroupTracker() override;

  /// Registers the type with the framework's factory; false when the factory refuses.
  static bool registered();
  /// Writes an error to the framework's log, when its level lets errors pass.
  static void logError(const char* message);

  QString identifier() const override;
  /// Nothing happens for the process itself. For any other one the call does not come back, since
  /// it begins with itself: hosts do not copy trackers.
  void copy(const moxAbstractProcess& other) override;

  bool init() override;
  void process() override;

  void initParameters() override;
  QMap<QString, QVariant> getSpecificParameters() override;
  bool setSpecificParameters(QMap<QString, QVariant> parameters) override;
  /// Reads the parameter file into the static parameters; ends the program on a malformed file.
  void readSpecificParameters(const std::string& fileName);
  /// What is wrong with a parameter file on which `init()` would end the program; empty when
  /// nothing is. For hosts that must not be ended, before they name the file; nothing else is
  /// changed. Hosts that know the process through the factory alone find it at the plugin's object,
  /// too.
  static QString parameterProblem(const QString& fileName);

 private:
  GroupTrackerProcessGroupTrackerPrivate& d();
  void initOutputs();
  void initSceneBounds();
  void warnOfOtherProcesses(const ParameterValues& before);
};

/// A new process, owned by the caller.
moxAbstractProcess* createGroupTrackerProcessGroupTracker();
