#pragma once

#include <functional>
#include <memory>
#include <string>

class QThread;

namespace grouptracker {

/// Serves a text to whoever asks for /metrics by HTTP, on a thread of its own. A request is read up
/// to some kilobytes and seconds, and only so many are answered at once, so nobody can hold it up.
class MetricsServer {
 public:
  using Text = std::function<std::string()>;

  /// `address` is HOST:PORT with a numeric host, or a port alone, which is then served on the
  /// loopback only. `text` is called on the server's thread. What cannot be served is an
  /// `OutputError`. Needs the application's object.
  MetricsServer(const std::string& address, Text text);
  ~MetricsServer();
  MetricsServer(const MetricsServer&) = delete;
  MetricsServer& operator=(const MetricsServer&) = delete;

  /// The port, which the system chooses where the address says 0.
  int port() const { return m_port; }

 private:
  int m_port = 0;
  std::unique_ptr<QThread> m_thread;
};

}  // namespace grouptracker
