#pragma once

#include <mox/moxExport.h>

#include <QDebug>
#include <QString>

/// One log line in the making; written to standard error when the engine goes out of scope.
class MOX_EXPORT moxLogEngine {
 public:
  /// `withLevel` puts the level in front of the line.
  moxLogEngine(unsigned int level, bool withLevel);
  ~moxLogEngine();
  moxLogEngine(const moxLogEngine&) = delete;
  moxLogEngine& operator=(const moxLogEngine&) = delete;

  /// Where the text of the line goes.
  QDebug stream() { return QDebug(&m_text); }

 private:
  QString m_text;
  unsigned int m_level;
  bool m_withLevel;
};
