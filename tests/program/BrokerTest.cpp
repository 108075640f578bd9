#include "tests/support/base/Texts.h"
#include "tests/support/live/Broker.h"
#include "tests/support/live/MqttPeer.h"
#include "tests/support/program/Program.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <set>
#include <thread>

namespace grouptracker {

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string pairMessage(int frame, int people = 2) {
  std::string all;
  for (int person = 1; person <= people; ++person) {
    all += fmt::format("{}{{\"id\": \"p{}\", \"x\": {}, \"y\": {}}}", all.empty() ? "" : ", ",
                       person, 0.1 * frame, 0.6 * person);
  }
  return fmt::format("{{\"frame\": {}, \"time\": {},\n \"people\": [{}]}}\n", frame, 0.1 * frame,
                     all);
}

std::string onOneLine(std::string text) {
  text.erase(text.find('\n'), 1);
  return text;
}

/// `grouptracker run` between a topic "people" and a topic "groups" of a broker.
class BrokerRun : public testing::Test {
 protected:
  QStringList arguments(const QStringList& more = {}) const {
    return QStringList{"run",
                       QString::fromStdString(broker.address("people")),
                       "--publish",
                       QString::fromStdString(broker.address("groups")),
                       "--look-ahead",
                       "0",
                       "--rate",
                       "10",
                       "--diagnostics",
                       "none",
                       "--mobile-dump",
                       "none",
                       "--max-lateness",
                       "0.1"} +
           more;
  }
  /// Whether it listens and can be heard.
  bool isThere() const {
    return broker.awaitSubscription("people") && peer.await("groups/status", 1);
  }

  Broker broker;
  MqttPeer peer{broker.port(), "peer", "groups"};
  const TempFolder folder;
  Program program{folder.path()};
};

TEST_F(BrokerRun, TurnsATopicOfPeopleIntoTopicsOfGroups) {
  program.start(arguments());
  ASSERT_TRUE(isThere());
  for (int frame = 1; frame <= 40; ++frame) {
    peer.send("people", frame == 20 ? "{\"people\": 1" : pairMessage(frame));
  }
  ASSERT_TRUE(peer.await("groups", 40)) << program.errors();
  program.send(SIGTERM);
  EXPECT_EQ(program.finish(), 128 + SIGTERM);
  ASSERT_TRUE(peer.await("groups/status", 2));
  const auto lines = peer.messages("groups");
  ASSERT_EQ(lines.size(), 40U);
  EXPECT_EQ(lines[0],
            "{\"sequence\": 1, \"frame\": 1, \"time\": 0.1, \"groups\": [], "
            "\"alone\": [\"p1\", \"p2\"]}");
  EXPECT_THAT(lines[19], HasSubstr("\"frame\": 20, \"time\": 2, \"groups\": [], \"alone\": []"));
  EXPECT_THAT(lines[39], AllOf(StartsWith("{\"sequence\": 40, \"frame\": 40, \"time\": 4, "),
                               HasSubstr("\"members\": [\"p1\", \"p2\"]")));
  EXPECT_THAT(peer.messages("groups/events").front(),
              AllOf(StartsWith("{\"sequence\": 1, \"time\": "),
                    HasSubstr("\"event\": \"created\", \"group\": 1")));
  EXPECT_EQ("{\"sequence\": 40, " + peer.messages("groups/now").back().substr(1), lines[39]);
  EXPECT_THAT(peer.messages("groups/status"), testing::ElementsAre("online", "offline"));
  EXPECT_THAT(program.errors(), HasSubstr("/people:20: not valid JSON (1 messages passed over"));
  EXPECT_THAT(program.errors(), HasSubstr("stopped by SIGTERM"));
}

TEST_F(BrokerRun, EndsWithADamagedMessageWhenItIsToBeStrict) {
  program.start(arguments({"--strict"}));
  ASSERT_TRUE(isThere());
  peer.send("people", pairMessage(1));
  peer.send("people", "{}");
  EXPECT_EQ(program.finish(), 2) << program.errors();
  EXPECT_THAT(program.errors(), EndsWith("/people:2: the people are missing (\"/people\")\n"));
  EXPECT_TRUE(peer.await("groups", 1));
}

TEST_F(BrokerRun, TracksTheLinesThatMessagesHold) {
  program.start(arguments());
  ASSERT_TRUE(isThere());
  for (int frame = 1; frame <= 30; ++frame) {
    peer.send("people", fmt::format("{0},4,1,2,3,8,1,{1},0.5,0\n{0},9,1,2,3,8,1,{1},1.1,0\n", frame,
                                    0.1 * frame));
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ASSERT_TRUE(peer.await("groups", 29)) << "a frame is whole when the next one begins";
  EXPECT_THAT(peer.messages("groups")[28],
              AllOf(StartsWith("{\"sequence\": 29, \"frame\": 29, \"time\": 2.9, "),
                    HasSubstr("\"members\": [4, 9]")));
}

TEST_F(BrokerRun, TakesABatchOfMessagesInOne) {
  program.start(arguments());
  ASSERT_TRUE(isThere());
  peer.send("people", "nothing that anybody knows");
  peer.send("people",
            onOneLine(pairMessage(1)) + onOneLine(pairMessage(2)) + onOneLine(pairMessage(3)));
  peer.send("people", pairMessage(4));
  ASSERT_TRUE(peer.await("groups", 4)) << program.errors();
  program.send(SIGTERM);
  EXPECT_EQ(program.finish(), 128 + SIGTERM);
  EXPECT_THAT(program.errors(), HasSubstr("is neither a people message nor"));
}

TEST_F(BrokerRun, WaitsForNobodyWhoReadsSlowly) {
  QProcess reader;
  reader.start("mosquitto_sub", {"-p", QString::number(broker.port()), "-q", "1", "-t", "groups"});
  ASSERT_TRUE(broker.awaitSubscription("groups"));
  ::kill(static_cast<pid_t>(reader.processId()), SIGSTOP);
  QStringList piped = arguments({"--output", "groups.jsonl", "--spool", "groups.spool"});
  piped[1] = "-";
  program.start(piped);
  ASSERT_TRUE(peer.await("groups/status", 1));
  const auto feed = [&](int from) {
    std::string all;
    for (int frame = from; frame < from + 200; ++frame) {
      all += onOneLine(pairMessage(frame, 4));
    }
    program.process().write(QByteArray::fromStdString(all));
    program.process().waitForBytesWritten();
    return program.waitUntil([&] {
      return linesOf(textOf(folder.path() / "groups.jsonl")).size() >=
             static_cast<std::size_t>(from) + 198;
    });
  };
  EXPECT_TRUE(feed(1)) << "while a subscriber stands still";
  broker.pause();
  EXPECT_TRUE(feed(201)) << "while the broker does";
  broker.resume();
  EXPECT_EQ(program.finish(), 0) << program.errors();
  ASSERT_TRUE(peer.await("groups", 400));
  const auto heard = peer.messages("groups");
  for (std::size_t i = 0; i < heard.size(); ++i) {
    ASSERT_THAT(heard[i], StartsWith(fmt::format("{{\"sequence\": {}, ", i + 1)));
  }
  reader.kill();
  reader.waitForFinished();
}

/// What a client sends next; empty when nothing comes.
QByteArray nextFrom(QTcpSocket& client) {
  client.waitForReadyRead(10000);
  return client.readAll();
}

TEST(BrokerAccess, IsNoticedWhenItIsDenied) {
  QTcpServer broker;  // that lets everybody in and lets nobody read, as some do by rules
  ASSERT_TRUE(broker.listen(QHostAddress::LocalHost));
  const TempFolder folder;
  Program program(folder.path());
  program.start({"run", QString("mqtt://127.0.0.1:%1/people").arg(broker.serverPort()),
                 "--diagnostics", "none", "--mobile-dump", "none"});
  QByteArray greeting;
  for (int connection = 0; connection < 2; ++connection) {
    ASSERT_TRUE(broker.waitForNewConnection(10000)) << program.errors();
    const std::unique_ptr<QTcpSocket> client(broker.nextPendingConnection());
    const QByteArray connect = nextFrom(*client);
    EXPECT_TRUE(greeting.isEmpty() || connect == greeting) << "a name of its own, always the same";
    greeting = connect;
    if (connection == 1) {
      client->write(QByteArray("\x20\x02\x00\x00", 4));
      const QByteArray subscription = nextFrom(*client);
      client->write(QByteArray("\x90\x03") + subscription.mid(2, 2) + "\x80");
      client->waitForBytesWritten();
      std::string errors;
      EXPECT_TRUE(program.waitUntil([&] {
        program.process().waitForReadyRead(10);
        errors = program.errors();
        return errors.find("does not let us read the topic") != std::string::npos;
      })) << errors;
    }
  }
  program.send(SIGTERM);
  EXPECT_EQ(program.finish(), 128 + SIGTERM);
}

TEST_F(BrokerRun, IsToldOfByItsLastWillWhenItIsKilled) {
  program.start(arguments());
  ASSERT_TRUE(peer.await("groups/status", 1));
  program.send(SIGKILL);
  program.process().waitForFinished();
  ASSERT_TRUE(peer.await("groups/status", 2));
  EXPECT_EQ(peer.messages("groups/status").back(), "offline");
}

TEST_F(BrokerRun, LosesNoLineWhenItIsKilled) {
  QStringList common = arguments({"--spool", "groups.spool", "--output"});
  common[1] = "-";
  std::set<std::string> tracked;
  for (int life = 0; life < 4; ++life) {
    Program mortal(folder.path());
    const std::string file = fmt::format("groups{}.jsonl", life);
    if (life == 1) {
      broker.save();
      broker.kill();
    }
    mortal.start(common + QStringList{QString::fromStdString(file)});
    for (int frame = 1; frame <= 60; ++frame) {
      mortal.process().write(
          QByteArray::fromStdString(onOneLine(pairMessage(1000 * life + frame))));
    }
    mortal.process().waitForBytesWritten();
    const auto lines = [&] { return linesOf(textOf(folder.path() / file)); };
    ASSERT_TRUE(mortal.waitUntil([&] { return lines().size() >= 30; })) << mortal.errors();
    mortal.send(SIGKILL);
    mortal.process().waitForFinished();
    for (const std::string& line : lines()) {
      tracked.insert(line.ends_with('}') ? line : "");
    }
    if (life == 2) {
      broker.start();
    }
  }
  Program last(folder.path());
  ASSERT_EQ(last.run(common + QStringList{"last.jsonl"}), 0) << last.errors();
  tracked.erase("");
  std::set<std::string> published;
  std::set<std::string> counters;
  const auto isPublished = [&] {
    for (const std::string& line : peer.messages("groups")) {
      const std::size_t end = line.find(", ");
      counters.insert(line.substr(0, end));
      published.insert("{" + line.substr(end + 2));
    }
    return std::includes(published.begin(), published.end(), tracked.begin(), tracked.end());
  };
  EXPECT_TRUE(last.waitUntil(isPublished));
  EXPECT_GE(tracked.size(), 120U);
  EXPECT_EQ(counters.size(), published.size()) << "each line has a counter of its own";
}

TEST(BrokerAccess, IsAskedForByAPasswordThatNobodySees) {
  const TempFolder folder;
  folder.write("login", "hall\nse cret\n");
  QProcess::execute(
      "mosquitto_passwd",
      {"-c", "-b", QString::fromStdString(folder.path() / "users"), "hall", "se cret"});
  Broker broker("allow_anonymous false\npassword_file " + (folder.path() / "users").string() +
                "\n");
  const QStringList arguments{
      "run",           "-",    "--publish",     QString::fromStdString(broker.address("groups")),
      "--metrics",     "0",    "--rate",        "10",
      "--diagnostics", "none", "--mobile-dump", "none"};
  Program stranger(folder.path());
  stranger.start(arguments);
  stranger.process().write(QByteArray::fromStdString(onOneLine(pairMessage(1))));
  stranger.process().waitForBytesWritten();
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  EXPECT_EQ(stranger.finish(), 0);
  EXPECT_THAT(stranger.errors(),
              AllOf(HasSubstr("not authorised"), HasSubstr("1 messages could not be published")));
  Program known(folder.path());
  known.start(arguments + QStringList{"--mqtt-login", "login"});
  known.process().write(QByteArray::fromStdString(onOneLine(pairMessage(1))));
  known.process().waitForBytesWritten();
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  const std::string commandLine =
      textOf(fmt::format("/proc/{}/cmdline", known.process().processId()));
  EXPECT_EQ(known.finish(), 0);
  EXPECT_THAT(known.errors() + commandLine, Not(HasSubstr("cret")));
  EXPECT_THAT(known.errors(), Not(HasSubstr("could not")));
}

void openssl(const TempFolder& folder, const QString& arguments) {
  QProcess process;
  process.setWorkingDirectory(QString::fromStdString(folder.path()));
  process.start("openssl", arguments.split(' '));
  process.waitForFinished();
  ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
}

TEST(BrokerAccess, IsSecuredByCertificatesOfBothSides) {
  const TempFolder folder;
  const QString key = "req -new -newkey rsa:2048 -nodes -subj /CN=%1 -keyout %1.key -out %1.csr";
  const QString sign =
      "x509 -req -in %1.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days 2 -out %1.pem";
  openssl(folder,
          "req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=ca -keyout ca.key -out ca.pem");
  for (const QString& name : {QString("localhost"), QString("tracker")}) {
    openssl(folder, key.arg(name));
    openssl(folder, sign.arg(name));
  }
  const auto at = [&folder](const char* name) { return (folder.path() / name).string(); };
  const Broker broker("allow_anonymous true\nrequire_certificate true\ncafile " + at("ca.pem") +
                      "\ncertfile " + at("localhost.pem") + "\nkeyfile " + at("localhost.key") +
                      "\n");
  const auto errorsOf = [&](const QStringList& more, int status) {
    Program program(folder.path());
    program.start(QStringList{"run", "-", "--publish",
                              QString("mqtts://localhost:%1/groups").arg(broker.port()), "--rate",
                              "10", "--diagnostics", "none", "--mobile-dump", "none"} +
                  more);
    program.process().write(QByteArray::fromStdString(onOneLine(pairMessage(1))));
    program.process().waitForBytesWritten();
    std::this_thread::sleep_for(std::chrono::milliseconds(1000));
    EXPECT_EQ(program.finish(), status);
    return program.errors();
  };
  const QStringList trusting{"--mqtt-ca", "ca.pem"};
  const QStringList known{"--mqtt-certificate", "tracker.pem", "--mqtt-key", "tracker.key"};
  EXPECT_THAT(errorsOf(trusting + known, 0), Not(HasSubstr("could not be published")));
  EXPECT_THAT(errorsOf(trusting, 0), HasSubstr("could not be published"));
  EXPECT_THAT(errorsOf(known, 0), HasSubstr("could not be published")) << "nobody vouches for it";
  EXPECT_THAT(errorsOf({"--mqtt-ca", "none.pem"}, 2),
              StartsWith("none.pem: cannot be read: No such"));
  EXPECT_EQ(errorsOf({"--mqtt-ca", "/dev/zero"}, 2), "/dev/zero: a regular file is expected\n");
}

}  // namespace

}  // namespace grouptracker
