#pragma once

#include <string>

namespace grouptracker {

/// What SIGHUP means: that the terminal is gone, or for a service that files which were moved away
/// are begun anew (`reopen_wish`).
enum class Hangup { stops, reopens };

/// Catches the wish to stop: SIGINT, SIGTERM and SIGHUP ask for a stop after the current frame, the
/// second of them ends the program at once. A standard output that nobody empties for a
/// second after the first one is let go, since whoever writes to it would sleep on; so is one other
/// file that somebody writes to who knows of no stop. Writing to a
/// pipe that nobody reads fails instead of ending the program, also behind the life of the object.
/// Everything that waits sees the wish in `stop_wish`. There is one set of signals: of two objects
/// the later one counts until it ends, as in a process that was forked off.
class StopSignals {
 public:
  explicit StopSignals(Hangup hangup = Hangup::stops);
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Has another open file let go in the way of standard output; -1 for none. It leads nowhere
  /// then.
  void letGoWhenFull(int descriptor);
  /// Whether a stop was asked for.
  bool stopRequested() const;
  /// The name of the signal that asked for a stop; empty without one.
  std::string signalName() const;
  /// The exit status that tells of the signal, as shells do; that of success when no stop was asked
  /// for. Holds behind the life of the object, too.
  static int exitStatus();
};

}  // namespace grouptracker
