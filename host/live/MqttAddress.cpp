#include "host/live/MqttAddress.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"

#include <QUrl>
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

namespace grouptracker {

namespace {

constexpr int usualPort = 1883;
constexpr int usualSecurePort = 8883;
constexpr std::size_t longestTopic = 1000;  // bytes
constexpr std::size_t longestLogin = 1000;  // bytes of a line
const char* const plainScheme = "mqtt";
const char* const secureScheme = "mqtts";

/// The text before "://", in small letters; empty without one.
std::string schemeOf(const std::string& text) {
  const std::size_t end = text.find("://");
  return end == std::string::npos
             ? std::string()
             : QString::fromStdString(text.substr(0, end)).toLower().toStdString();
}

/// Whether something stands before the host.
bool holdsLogin(const std::string& text) {
  const std::size_t scheme = text.find("://");
  const std::size_t begin = scheme == std::string::npos ? 0 : scheme + 3;
  return text.substr(begin, text.find('/', begin) - begin).find('@') != std::string::npos;
}

/// Whether no broker takes a character in a topic; what was no UTF-8 has become a replacement.
bool isRefused(char32_t character) {
  return QChar::category(character) == QChar::Other_Control || QChar::isNonCharacter(character) ||
         character == QChar::ReplacementCharacter;
}

std::string fromEnvironment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace

bool MqttAddress::isOne(const std::string& text) {
  const std::string scheme = schemeOf(text);
  return scheme == plainScheme || scheme == secureScheme;
}

MqttAddress MqttAddress::parse(const std::string& text) {
  const QUrl url(QString::fromStdString(text), QUrl::StrictMode);
  // A password is not even repeated in messages, which may go into a log. Behind the host an '@'
  // belongs to the topic, unless somebody has a '/' in his password.
  const std::string shown = text.find('@') == std::string::npos ? text : "mqtt://...";
  if (holdsLogin(text)) {
    throw InputError("mqtt://",
                     "an address holds no user or password; they belong into a file (--mqtt-login) "
                     "or into the environment");
  }
  if (!isOne(text) || !url.isValid() || url.host().isEmpty()) {
    throw InputError(shown, "mqtt://HOST[:PORT]/TOPIC is expected");
  }
  MqttAddress address;
  address.host = url.host().toStdString();
  address.isSecure = schemeOf(text) == secureScheme;
  address.port = url.port(address.isSecure ? usualSecurePort : usualPort);
  const QString topic = url.path(QUrl::FullyDecoded).mid(1);
  address.topic = topic.toStdString();
  if (address.topic.find_first_of("+#") != std::string::npos || url.hasFragment() ||
      url.hasQuery()) {
    throw InputError(shown, "one topic is expected, without wildcards and without + # ?");
  }
  const auto characters = topic.toStdU32String();
  if (std::any_of(characters.begin(), characters.end(), isRefused)) {
    throw InputError(shown, "a topic in UTF-8 without control characters is expected");
  }
  if (address.topic.empty() || address.topic.size() > longestTopic) {
    throw InputError(shown, fmt::format("a topic of 1 to {} bytes is expected", longestTopic));
  }
  return address;
}

std::string MqttAddress::text() const {
  const bool isNumber = host.find(':') != std::string::npos;
  return fmt::format("{}://{}:{}/{}", isSecure ? secureScheme : plainScheme,
                     isNumber ? "[" + host + "]" : host, port, topic);
}

BrokerLogin BrokerLogin::read(const BrokerAccess& access) {
  if (access.loginFile.empty()) {
    return {fromEnvironment("GROUPTRACKER_MQTT_USER"),
            fromEnvironment("GROUPTRACKER_MQTT_PASSWORD")};
  }
  InputFile file(access.loginFile);
  LineReader lines(file.stream(), access.loginFile, longestLogin);
  BrokerLogin login;
  if (!lines.next() || lines.line().empty()) {
    throw InputError(access.loginFile, "the user is expected on the first line");
  }
  login.user = lines.line();
  login.password = lines.next() ? lines.line() : "";
  return login;
}

}  // namespace grouptracker
