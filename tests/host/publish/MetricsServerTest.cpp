#include "host/publish/MetricsServer.h"
#include "host/publish/RunMetrics.h"
#include "tests/support/base/Texts.h"

#include <QCoreApplication>
#include <QTcpSocket>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace grouptracker {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// A server of numbers that somebody asks.
class Metrics : public testing::Test {
 protected:
  std::unique_ptr<QTcpSocket> connected() const {
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost("127.0.0.1", static_cast<quint16>(server.port()));
    socket->waitForConnected();
    return socket;
  }
  std::string answer(const std::string& request) const {
    const auto socket = connected();
    socket->write(request.data(), static_cast<qint64>(request.size()));
    socket->waitForDisconnected();
    return socket->readAll().toStdString();
  }

  int argumentCount = 0;
  QCoreApplication application{argumentCount, nullptr};
  RunMetrics numbers;
  MetricsServer server{"127.0.0.1:0", [this] { return numbers.text(); }};
};

TEST_F(Metrics, AreServedInTheTextFormat) {
  numbers.set(Metric::frames, std::uint64_t{17});
  const std::string text = answer("GET /metrics HTTP/1.1\r\nHost: x\r\n\r\n");
  EXPECT_THAT(text, StartsWith("HTTP/1.1 200 OK\r\n"));
  EXPECT_THAT(text, HasSubstr("# HELP grouptracker_frames_total frames tracked\n"
                              "# TYPE grouptracker_frames_total counter\n"
                              "grouptracker_frames_total 17\n"));
  EXPECT_THAT(text, EndsWith("\ngrouptracker_spool_dropped_total 0\n"));
}

TEST_F(Metrics, AreNotHeldUpByThoseWhoAskBadly) {
  std::vector<std::unique_ptr<QTcpSocket>> silent;
  for (int i = 0; i < 10; ++i) {
    silent.push_back(connected());
  }
  EXPECT_THAT(answer("GET /secret HTTP/1.1\r\n\r\n"), StartsWith("HTTP/1.1 404 Not Found\r\n"));
  EXPECT_EQ(answer(std::string(20000, 'x')), "");
  EXPECT_THAT(answer("GET /metrics HTTP/1.1\r\n\r\n"), StartsWith("HTTP/1.1 200 OK\r\n"));
}

TEST_F(Metrics, AreServedAgainOnceTooManySilentAskersHaveLeft) {
  constexpr int most = 16;
  constexpr int soon = 2000;  // ms; before the server loses its patience with the first
  std::vector<std::unique_ptr<QTcpSocket>> silent;
  for (int i = 0; i < most + 4; ++i) {
    silent.push_back(connected());
  }
  for (int i = most; i < most + 4; ++i) {
    QTcpSocket& late = *silent[static_cast<std::size_t>(i)];
    EXPECT_TRUE(late.state() == QTcpSocket::UnconnectedState || late.waitForDisconnected(soon))
        << i;
  }
  EXPECT_FALSE(silent.front()->waitForDisconnected(1));
  silent.clear();
  std::string text;
  for (int attempt = 0; attempt < 100 && text.empty(); ++attempt) {
    text = answer("GET /metrics HTTP/1.1\r\n\r\n");  // it notices one after the other
  }
  EXPECT_THAT(text, StartsWith("HTTP/1.1 200 OK\r\n"));
}

TEST_F(Metrics, SayWhereTheyCannotBeServed) {
  const auto error = [](const std::string& address) {
    return errorOf([&] { MetricsServer(address, [] { return std::string(); }); });
  };
  EXPECT_THAT(error("127.0.0.1:" + std::to_string(server.port())),
              HasSubstr("metrics cannot be served: "));
  EXPECT_EQ(error("somewhere:80"),
            "--metrics: HOST:PORT with a numeric host is expected, not somewhere:80");
  EXPECT_THAT(error("127.0.0.1:http"), HasSubstr("is expected"));
}

}  // namespace

}  // namespace grouptracker
