#include "host/publish/MetricsServer.h"

#include "host/base/OutputPlace.h"

#include <QEventLoop>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <fmt/format.h>

#include <future>
#include <utility>

namespace grouptracker {

namespace {

constexpr int mostRequests = 16;          // at once
constexpr int longestRequest = 8 * 1024;  // bytes
constexpr int longestWait = 5000;         // ms

struct Place {
  QHostAddress host{QHostAddress::LocalHost};
  quint16 port = 0;
};

Place placeOf(const std::string& address) {
  const QString text = QString::fromStdString(address);
  const int colon = text.lastIndexOf(':');
  Place place;
  bool isPort = false;
  place.port = text.mid(colon + 1).toUShort(&isPort);
  QString host = text.left(colon);
  host.remove('[').remove(']');
  const bool isHost = colon < 0 || place.host.setAddress(host);
  if (!isPort || !isHost) {
    throw OutputError("--metrics", "HOST:PORT with a numeric host is expected, not " + address);
  }
  return place;
}

QByteArray answerTo(const QByteArray& request, const MetricsServer::Text& text) {
  const bool isKnown = request.startsWith("GET /metrics ") || request.startsWith("GET / ");
  const QByteArray body = isKnown ? QByteArray::fromStdString(text()) : "only /metrics is served\n";
  return QByteArray(isKnown ? "HTTP/1.1 200 OK\r\n" : "HTTP/1.1 404 Not Found\r\n") +
         "Content-Type: text/plain; version=0.0.4; charset=utf-8\r\nConnection: close\r\n"
         "Content-Length: " +
         QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

void answer(QTcpSocket& socket, const MetricsServer::Text& text) {
  const QByteArray request = socket.peek(longestRequest);
  if (request.contains("\r\n\r\n") || request.contains("\n\n")) {
    socket.readAll();
    socket.write(answerTo(request, text));
    socket.disconnectFromHost();
  } else if (request.size() == longestRequest) {
    socket.abort();
  }
}

/// Takes one who asks, unless too many do.
void take(QTcpServer& server, const MetricsServer::Text& text) {
  while (QTcpSocket* const socket = server.nextPendingConnection()) {
    socket->setReadBufferSize(longestRequest);
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    if (server.findChildren<QTcpSocket*>().size() > mostRequests) {
      socket->abort();
      continue;
    }
    QObject::connect(socket, &QTcpSocket::readyRead, socket,
                     [socket, &text] { answer(*socket, text); });
    QTimer::singleShot(longestWait, socket, [socket] { socket->abort(); });
  }
}

/// What came of listening: the port, or 0 and why not.
struct Listening {
  int port = 0;
  std::string problem;
};

void serve(const Place& place, const MetricsServer::Text& text, std::promise<Listening>& begun) {
  QTcpServer server;
  if (!server.listen(place.host, place.port)) {
    begun.set_value({0, server.errorString().toStdString()});
    return;
  }
  QObject::connect(&server, &QTcpServer::newConnection, &server,
                   [&server, &text] { take(server, text); });
  QEventLoop loop;
  begun.set_value({server.serverPort(), ""});
  loop.exec();
}

}  // namespace

MetricsServer::MetricsServer(const std::string& address, Text text) {
  const Place place = placeOf(address);
  auto begun = std::make_shared<std::promise<Listening>>();
  auto listening = begun->get_future();
  m_thread.reset(
      QThread::create([place, text = std::move(text), begun] { serve(place, text, *begun); }));
  m_thread->start();
  const Listening result = listening.get();
  m_port = result.port;
  if (m_port == 0) {
    m_thread->wait();
    throw OutputError(address, "metrics cannot be served: " + result.problem);
  }
}

MetricsServer::~MetricsServer() {
  m_thread->quit();
  m_thread->wait();
}

}  // namespace grouptracker
