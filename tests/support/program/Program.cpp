#include "tests/support/program/Program.h"

#include <chrono>
#include <csignal>
#include <thread>

namespace grouptracker {

namespace {

constexpr int patience = 30000;  // ms

}  // namespace

Program::Program(const std::string& workingFolder) {
  m_process.setWorkingDirectory(QString::fromStdString(workingFolder));
}

std::string Program::path() {
  return GROUPTRACKER_PROGRAM;
}

void Program::start(const QStringList& arguments) {
  m_process.start(GROUPTRACKER_PROGRAM, arguments);
  m_process.waitForStarted(patience);
}

void Program::send(int signal) {
  ::kill(static_cast<pid_t>(m_process.processId()), signal);
}

bool Program::waitUntil(const std::function<bool()>& condition) {
  constexpr int pause = 10;  // ms
  for (int waited = 0; waited < patience; waited += pause) {
    if (condition()) {
      return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(pause));
  }
  return false;
}

int Program::finish() {
  m_process.closeWriteChannel();
  const bool hasEnded =
      m_process.state() == QProcess::NotRunning || m_process.waitForFinished(patience);
  return hasEnded && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

}  // namespace grouptracker
