#include "tests/support/live/Broker.h"

#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <csignal>
#include <stdexcept>

namespace grouptracker {

namespace {

constexpr int patience = 10000;  // ms
constexpr int shortPause = 20;   // ms

int freePort() {
  QTcpServer server;
  server.listen(QHostAddress::LocalHost);
  return server.serverPort();
}

QString program() {
  const QString found = QStandardPaths::findExecutable("mosquitto");
  return found.isEmpty() ? QStringLiteral("/usr/sbin/mosquitto") : found;
}

bool answers(int port) {
  QTcpSocket socket;
  socket.connectToHost(QHostAddress(QHostAddress::LocalHost), static_cast<quint16>(port));
  return socket.waitForConnected(shortPause);
}

}  // namespace

Broker::Broker(const std::string& more) : m_port(freePort()) {
  m_folder.write("broker.conf",
                 "listener " + std::to_string(m_port) + " 127.0.0.1\n" + more +
                     "user root\npersistence true\npersistence_location " +
                     m_folder.path().string() +
                     "/\nset_tcp_nodelay true\nmax_queued_messages 0\nmax_inflight_messages 0\n"
                     "log_type error\nlog_type subscribe\nlog_dest file " +
                     file("log") + "\n");
  start();
}

Broker::~Broker() {
  kill();
}

std::string Broker::address(const std::string& topic) const {
  return "mqtt://127.0.0.1:" + std::to_string(m_port) + "/" + topic;
}

void Broker::kill() {
  m_process.kill();
  m_process.waitForFinished(patience);
}

void Broker::start() {
  m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  m_process.start(program(), {"-c", QString::fromStdString(file("broker.conf"))});
  for (int waited = 0; waited < patience; waited += shortPause) {
    if (answers(m_port)) {
      return;
    }
    QThread::msleep(shortPause);
  }
  throw std::runtime_error("the broker does not start: " + textOf(file("log")));
}

void Broker::signal(int number) const {
  ::kill(static_cast<pid_t>(m_process.processId()), number);
}

void Broker::pause() {
  signal(SIGSTOP);
}

void Broker::resume() {
  signal(SIGCONT);
}

bool Broker::awaitSubscription(const std::string& topic) const {
  const auto isThere = [&] {
    return textOf(file("log")).find(" " + topic + "\n") != std::string::npos;
  };
  for (int waited = 0; waited < patience && !isThere(); waited += shortPause) {
    QThread::msleep(shortPause);
  }
  return isThere();
}

void Broker::save() {
  signal(SIGUSR1);
  const std::string state = file("mosquitto.db");
  for (int waited = 0; waited < patience && textOf(state).empty(); waited += shortPause) {
    QThread::msleep(shortPause);
  }
}

}  // namespace grouptracker
