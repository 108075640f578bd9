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
constexpr int pause = 20;        // ms

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
  return socket.waitForConnected(pause);
}

}  // namespace

Broker::Broker(const std::string& more) : m_port(freePort()) {
  m_folder.write("broker.conf",
                 "listener " + std::to_string(m_port) + " 127.0.0.1\n" + more +
                     "user root\npersistence true\npersistence_location " +
                     m_folder.path().string() +
                     "/\nset_tcp_nodelay true\nmax_queued_messages 0\nmax_inflight_messages 0\n"
                     "log_dest stderr\nlog_type error\n");
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
  for (int waited = 0; waited < patience; waited += pause) {
    if (answers(m_port)) {
      return;
    }
    QThread::msleep(pause);
  }
  throw std::runtime_error("the broker does not start");
}

void Broker::save() {
  ::kill(static_cast<pid_t>(m_process.processId()), SIGUSR1);
  const std::string state = file("mosquitto.db");
  for (int waited = 0; waited < patience && textOf(state).empty(); waited += pause) {
    QThread::msleep(pause);
  }
}

}  // namespace grouptracker
