#pragma once

#include <string>

namespace grouptracker {

/// Where a topic of an MQTT broker is: `mqtt://host:1883/some/topic`, or `mqtts://` with TLS. The
/// port may be missing: 1883, or 8883 with TLS.
struct MqttAddress {
  std::string host;
  int port = 0;
  bool isSecure = false;
  std::string topic;  ///< one topic, without wildcards, in UTF-8 that brokers take

  /// Whether a text is meant as such an address, be its scheme in capitals or not.
  static bool isOne(const std::string& text);
  /// What is no such address is an `InputError`; so is a user or password in it, which would stand
  /// in the list of processes; an address with an '@' is not repeated in the message.
  static MqttAddress parse(const std::string& text);

  /// As the user wrote it, for messages.
  std::string text() const;
};

/// What it takes to be let in by a broker. Texts are empty when the user did not say.
struct BrokerAccess {
  std::string loginFile;        ///< user on the first line, password on the second
  std::string caFile;           ///< certificates of those who are trusted; the system's when empty
  std::string certificateFile;  ///< of the client
  std::string keyFile;          ///< to that certificate
};

/// A user's name and password; both are empty where nobody is asked.
struct BrokerLogin {
  std::string user;
  std::string password;

  /// Out of the file, or without one out of the environment: GROUPTRACKER_MQTT_USER and
  /// GROUPTRACKER_MQTT_PASSWORD. A file without user is an `InputError`.
  static BrokerLogin read(const BrokerAccess& access);
};

}  // namespace grouptracker
