#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

#include <functional>
#include <string>

namespace grouptracker {

/// One start of the program under test, in a working folder of its own.
class Program {
 public:
  explicit Program(const std::string& workingFolder);

  /// The file of the program.
  static std::string path();
  /// The process behind, for tests that close or redirect its channels.
  QProcess& process() { return m_process; }
  void start(const QStringList& arguments);
  /// Sends a signal of the operating system.
  void send(int signal);
  /// Waits until the condition holds; false when it does not within half a minute.
  bool waitUntil(const std::function<bool()>& condition);
  /// Closes the program's standard input, waits for its end and returns its exit status; -1 when it
  /// crashed or hangs.
  int finish();
  /// All that it wrote to standard output and standard error by now.
  std::string output() { return m_output += m_process.readAllStandardOutput().toStdString(); }
  std::string errors() { return m_errors += m_process.readAllStandardError().toStdString(); }

  /// Starts the program and waits for its end.
  int run(const QStringList& arguments) {
    start(arguments);
    return finish();
  }

 private:
  QProcess m_process;
  std::string m_output;
  std::string m_errors;
};

}  // namespace grouptracker
