#include <mox/moxAbstractProcess.h>
#include <mox/moxLogEngine.h>
#include <mox/moxLogger.h>
#include <mox/moxPlugin.h>

#include <cstdio>

// The few bodies that plugins, processes and logging need.

moxAbstractProcess::moxAbstractProcess(QObject* parent) : QObject(parent) {}

moxAbstractProcess::~moxAbstractProcess() = default;

moxLogEngine::moxLogEngine(unsigned int level, bool withLevel)
    : m_level(level), m_withLevel(withLevel) {}

moxLogEngine::~moxLogEngine() {
  const QByteArray line = m_text.trimmed().toUtf8();
  if (m_withLevel) {
    std::fprintf(stderr, "[%u] %s\n", m_level, line.constData());
  } else {
    std::fprintf(stderr, "%s\n", line.constData());
  }
}

moxLogger& moxLogger::instance() {
  static moxLogger logger;
  return logger;
}

moxPlugin::moxPlugin(QObject* parent) : QObject(parent) {}

moxPlugin::~moxPlugin() = default;
