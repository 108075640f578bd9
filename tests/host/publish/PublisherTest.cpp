#include "host/publish/Publisher.h"
#include "tests/support/base/Texts.h"
#include "tests/support/live/Broker.h"
#include "tests/support/live/MqttPeer.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <thread>

namespace grouptracker {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<Outgoing> line(int number) {
  return {{Channel::groups, "{\"line\": " + std::to_string(number) + "}"}};
}

std::string sent(int number) {
  const std::string text = std::to_string(number);
  return "{\"sequence\": " + text + ", \"line\": " + text + "}";
}

std::vector<std::string> sentUpTo(int last) {
  std::vector<std::string> all;
  for (int number = 1; number <= last; ++number) {
    all.push_back(sent(number));
  }
  return all;
}

/// Without what came again, which its counter shows.
std::vector<std::string> firsts(const std::vector<std::string>& messages) {
  std::vector<std::string> first;
  std::set<std::string> seen;
  for (const std::string& message : messages) {
    if (seen.insert(message).second) {
      first.push_back(message);
    }
  }
  return first;
}

/// A broker, somebody who listens, and what a publisher there says.
class Publishing : public testing::Test {
 protected:
  PublishOptions options(const std::string& spoolFile = "") {
    PublishOptions options;
    options.address = broker.address("hall");
    options.spoolFile = spoolFile;
    options.onWarning = [this](const std::string& warning) { warnings.push_back(warning); };
    return options;
  }
  std::string spoolFile() const { return folder.path() / "spool"; }

  const TempFolder folder;
  Broker broker;
  std::vector<std::string> warnings;
};

TEST_F(Publishing, TellsLinesEventsWhatHoldsNowAndThatItIsThere) {
  MqttPeer listener(broker.port(), "listener", "hall");
  {
    Publisher publisher(options());
    for (int number = 1; number <= 200; ++number) {
      publisher.publish(line(number));
    }
    publisher.publish({{Channel::events, "{\"event\": \"created\"}"}});
    publisher.show("{}");
    publisher.finish();
    const Publisher::Counts counts = publisher.counts();
    EXPECT_EQ(counts.published, 201U);
    EXPECT_EQ(counts.waiting + counts.waitingBytes + counts.dropped, 0U);
    EXPECT_TRUE(counts.isConnected);
  }
  ASSERT_TRUE(listener.await("hall/status", 2));
  EXPECT_EQ(listener.messages("hall"), sentUpTo(200));
  EXPECT_THAT(listener.messages("hall/events"),
              ElementsAre("{\"sequence\": 1, \"event\": \"created\"}"));
  EXPECT_THAT(listener.messages("hall/status"), ElementsAre("online", "offline"));
  EXPECT_THAT(warnings, IsEmpty());
  const MqttPeer late(broker.port(), "late", "hall");
  ASSERT_TRUE(late.await("hall/now", 1));
  EXPECT_THAT(late.messages("hall/now"), ElementsAre("{}"));
  EXPECT_THAT(late.messages("hall/status"), ElementsAre("offline"));
  EXPECT_THAT(late.messages("hall"), IsEmpty());
}

TEST_F(Publishing, KeepsInOrderWhatABrokerThatCrashesMisses) {
  MqttPeer listener(broker.port(), "listener", "hall");
  broker.save();
  Publisher publisher(options(spoolFile()));
  int number = 0;
  const auto publishSome = [&] {
    for (int i = 0; i < 100; ++i) {
      publisher.publish(line(++number));
    }
  };
  publishSome();
  for (int crash = 0; crash < 3; ++crash) {
    // What the broker has said to have is its own affair, so the listener has to have it and the
    // broker says no more.
    ASSERT_TRUE(listener.await("hall", static_cast<std::size_t>(number)));
    broker.pause();
    publishSome();
    broker.kill();
    publishSome();
    broker.start();
    while (!publisher.counts().isConnected) {
      publisher.publish(line(++number));  // also in the moment of the new connection
    }
    publishSome();
  }
  listener.await("hall", static_cast<std::size_t>(number));
  publisher.finish();
  for (int wait = 0; wait < 200 && publisher.counts().waiting > 0; ++wait) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  EXPECT_TRUE(firsts(listener.messages("hall")) == sentUpTo(number));
  EXPECT_THAT(warnings, testing::Contains(HasSubstr("the broker is away")));
}

TEST_F(Publishing, ShowsTheLatestLastHoweverLongTheBrokerIsSilent) {
  MqttPeer listener(broker.port(), "listener", "hall");
  Publisher publisher(options());
  publisher.show("{\"now\": 0}");
  ASSERT_TRUE(listener.await("hall/now", 1));
  broker.pause();
  for (int now = 1; now <= 1000; ++now) {
    publisher.show("{\"now\": " + std::to_string(now) + "}");
    publisher.publish(line(now));
  }
  broker.resume();
  publisher.finish();
  ASSERT_TRUE(listener.await("hall", 1000));
  EXPECT_EQ(listener.messages("hall"), sentUpTo(1000));
  const auto shown = listener.messages("hall/now");
  EXPECT_LE(shown.size(), 3U) << "they do not pile up";
  EXPECT_EQ(shown.back(), "{\"now\": 1000}");
}

TEST_F(Publishing, GoesOnWithTheSpoolOfAnEarlierRun) {
  MqttPeer listener(broker.port(), "listener", "hall");
  broker.save();
  broker.kill();
  {
    Publisher publisher(options(spoolFile()));
    for (int number = 1; number <= 100; ++number) {
      publisher.publish(line(number));
    }
    publisher.finish();
    EXPECT_THAT(warnings.back(), HasSubstr("100 messages wait in "));
  }
  broker.start();
  Publisher publisher(options(spoolFile()));
  publisher.publish(line(101));
  ASSERT_TRUE(listener.await("hall", 101));
  EXPECT_EQ(firsts(listener.messages("hall")), sentUpTo(101));
}

TEST_F(Publishing, DropsTheOldestOfTooMuchAndSaysSoOnceAndInTheEnd) {
  broker.kill();
  PublishOptions tight = options(spoolFile());
  tight.spoolBytes = 1000;
  Publisher publisher(tight);
  for (int number = 1; number <= 500; ++number) {
    publisher.publish(line(number));
  }
  const std::uint64_t dropped = publisher.counts().dropped;
  EXPECT_GT(dropped, 400U);
  EXPECT_LE(publisher.counts().waitingBytes, 1000U);
  const auto told = [&](const char* what) {
    return std::count_if(warnings.begin(), warnings.end(), [what](const std::string& warning) {
      return warning.find(what) != std::string::npos;
    });
  };
  EXPECT_EQ(told("the oldest"), 1);
  EXPECT_LE(told("the broker is away"), 1);
  publisher.finish();
  EXPECT_EQ(told("the oldest"), 2);
  EXPECT_EQ(told(fmt::format("the oldest {} messages were dropped", dropped).c_str()), 1);
  EXPECT_EQ(told("the broker is away"), 1);
}

}  // namespace

}  // namespace grouptracker
