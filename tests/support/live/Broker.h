#pragma once

#include "tests/support/base/Texts.h"

#include <QProcess>

#include <string>

namespace grouptracker {

/// A broker of MQTT on a free port of the loopback, started by the test itself. What it keeps for
/// those who are away survives a crash as far as `save()` was called before.
class Broker {
 public:
  /// `more` are further lines of its configuration; the port is that of a listener that `more` ends
  /// with, if it begins one.
  explicit Broker(const std::string& more = "allow_anonymous true\n");
  ~Broker();
  Broker(const Broker&) = delete;
  Broker& operator=(const Broker&) = delete;

  int port() const { return m_port; }
  /// mqtt://127.0.0.1:PORT/topic
  std::string address(const std::string& topic) const;
  /// Ends it as a crash does.
  void kill();
  /// Starts it again on the same port.
  void start();
  /// Keeps it from answering, without its connections ending, and lets it go on.
  void pause();
  void resume();
  /// Has it write down who is subscribed.
  void save();
  /// Waits until somebody has subscribed to exactly this; false when nobody does in ten seconds.
  bool awaitSubscription(const std::string& topic) const;
  /// A file of its folder.
  std::string file(const std::string& name) const { return m_folder.path() / name; }

 private:
  void signal(int number) const;

  const TempFolder m_folder;
  int m_port = 0;
  QProcess m_process;
};

}  // namespace grouptracker
