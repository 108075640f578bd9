#include <mox/moxLogEngine.h>

#include <cstdio>

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
