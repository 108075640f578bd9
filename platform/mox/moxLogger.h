#pragma once

#include <mox/moxExport.h>

/// The level of the framework's log: messages are written when their level is at least this one.
class MOX_EXPORT moxLogger {
 public:
  /// The one logger of the program.
  static moxLogger& instance();

  /// The current level; 0 at start, so that everything is written.
  unsigned int level() const { return m_level; }
  /// Raises or lowers what is written from now on.
  void setLevel(unsigned int level) { m_level = level; }

 private:
  moxLogger() = default;

  unsigned int m_level = 0;
};
