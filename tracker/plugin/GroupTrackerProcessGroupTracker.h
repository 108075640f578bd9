#pragma once

#include <kel/kelAbstractProcessGroupTracker.h>

#include <string>

class GroupTrackerProcessGroupTrackerPrivate;

/// The process that turns the people of each frame into groups: reads its parameters once, feeds
/// the tracker frame by frame and appends one actor per group to the actor list, for the frame
/// "temporalWinSize:" frames back.
///
/// Two named parameters of an instance are read by `init()`: "diagnostics" (false: nothing is
/// printed) and "mobileDump" (false: no dump of the mobiles; a text: the dump's file name). A third
/// one, "outputProblem", is set by `process()` when a file could not be written at this frame: the
/// file and what is wrong, a list of two texts. The process itself goes on.
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
  void copy(const moxAbstractProcess& other) override;

  bool init() override;
  void process() override;

  void initParameters() override;
  QMap<QString, QVariant> getSpecificParameters() override;
  bool setSpecificParameters(QMap<QString, QVariant> parameters) override;
  /// Reads the parameter file into the static parameters; ends the program on a malformed file.
  void readSpecificParameters(const std::string& fileName);

 private:
  GroupTrackerProcessGroupTrackerPrivate& d();
  void initOutputs();
  void initSceneBounds();
};

/// A new process, owned by the caller.
moxAbstractProcess* createGroupTrackerProcessGroupTracker();
