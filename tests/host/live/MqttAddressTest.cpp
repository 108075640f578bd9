#include "host/live/MqttAddress.h"
#include "host/live/MqttClient.h"
#include "tests/support/base/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace grouptracker {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string error(const std::string& text) {
  return errorOf([&] { MqttAddress::parse(text); });
}

TEST(MqttAddress, NamesBrokerAndTopic) {
  const MqttAddress plain = MqttAddress::parse("mqtt://broker.example/hall/people%20here");
  EXPECT_EQ(plain.host, "broker.example");
  EXPECT_EQ(plain.port, 1883);
  EXPECT_EQ(plain.topic, "hall/people here");
  EXPECT_EQ(MqttAddress::parse("mqtt://host/hall@home").topic, "hall@home");
  const MqttAddress secure = MqttAddress::parse("mqtts://[::1]/a");
  EXPECT_TRUE(secure.isSecure);
  EXPECT_EQ(secure.text(), "mqtts://[::1]:8883/a");
  EXPECT_TRUE(MqttAddress::parse("MQTTS://host/a").isSecure);
  EXPECT_FALSE(MqttAddress::isOne("tracks.csv"));
}

TEST(MqttAddress, RefusesWhatIsNoTopicAndRepeatsNoPassword) {
  EXPECT_EQ(error("mqtt:///people"), "mqtt:///people: mqtt://HOST[:PORT]/TOPIC is expected");
  EXPECT_THAT(error("mqtt://host:x/people"), HasSubstr("is expected"));
  EXPECT_THAT(error("mqtt://host"), HasSubstr("a topic of 1 to 1000 bytes"));
  EXPECT_THAT(error("mqtt://host/" + std::string(1001, 'x')), HasSubstr("a topic of 1 to 1000"));
  EXPECT_THAT(error("mqtt://host/a/+/b"), HasSubstr("without wildcards"));
  EXPECT_THAT(error("mqtt://host/a/#"), HasSubstr("without wildcards"));
  for (const char* const unprintable : {"%00", "%FF", "%0A", "%EF%BF%BF"}) {
    EXPECT_THAT(error(std::string("mqtt://host/a") + unprintable), HasSubstr("in UTF-8"));
  }
  EXPECT_THAT(error("mqtt://me:sec/ret@host/a"),
              AllOf(HasSubstr("is expected"), Not(HasSubstr("sec"))));
  for (const char* const scheme : {"mqtt", "MQTT", "mqttS"}) {
    const std::string address = std::string(scheme) + "://me:secret@host/a";
    EXPECT_TRUE(MqttAddress::isOne(address));
    EXPECT_THAT(error(address), AllOf(HasSubstr("--mqtt-login"), Not(HasSubstr("secret"))));
  }
}

TEST(MqttClient, TellsWhatCanNeverBeSent) {
  MqttClient client(MqttAddress::parse("mqtt://localhost/hall"), {}, {});
  const MqttHandover wildcards = client.publish("hall/#", "{}", false);
  EXPECT_FALSE(wildcards.message);
  EXPECT_NE(wildcards.refusal, "");
}

TEST(BrokerLogin, ComesOutOfAFileOrTheEnvironment) {
  const TempFolder folder;
  const auto read = [](const std::string& file) {
    const BrokerLogin login = BrokerLogin::read({file, "", "", ""});
    return login.user + "/" + login.password;
  };
  EXPECT_EQ(read(folder.write("login", "me\r\nse cret\n")), "me/se cret");
  EXPECT_THAT(errorOf([&] { read(folder.write("empty", "\n")); }),
              HasSubstr("the user is expected on the first line"));
  EXPECT_EQ(read(""), "/");
  ::setenv("GROUPTRACKER_MQTT_USER", "you", 1);
  ::setenv("GROUPTRACKER_MQTT_PASSWORD", "word", 1);
  EXPECT_EQ(read(""), "you/word");
  ::unsetenv("GROUPTRACKER_MQTT_USER");
  ::unsetenv("GROUPTRACKER_MQTT_PASSWORD");
}

}  // namespace

}  // namespace grouptracker
