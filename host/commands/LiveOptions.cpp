#include "host/commands/RunOptions.h"

namespace grouptracker {

namespace {

constexpr std::size_t bytesOfMegabyte = std::size_t{1024} * 1024;
constexpr int largestSpool = 1024 * 1024;  // megabytes

void declarePublishing(Options& command, LiveOptions& options) {
  command
      .add("--publish", options.publishAddress,
           "publishes groups under a topic, events under TOPIC/events, what holds now under "
           "TOPIC/now and whether the run is there under TOPIC/status")
      .typeName("mqtt://HOST:PORT/TOPIC");
  command
      .add("--spool", options.spoolFile,
           "keeps what the broker does not have yet, also when the program ends; in memory "
           "without it")
      .writes("FILE");
  command
      .add("--spool-size", options.spoolMegabytes,
           "of more than so much that waits for the broker the oldest is dropped")
      .within(1, largestSpool)
      .typeName("MEGABYTES")
      .showDefault();
}

void declareAccess(Options& command, BrokerAccess& access) {
  command
      .add("--mqtt-login", access.loginFile,
           "user on the first line and password on the second, in place of the environment "
           "variables GROUPTRACKER_MQTT_USER and GROUPTRACKER_MQTT_PASSWORD")
      .reads("FILE");
  command
      .add("--mqtt-ca", access.caFile,
           "for mqtts://: the certificates to be trusted, in place of the system's")
      .reads("FILE");
  command.add("--mqtt-certificate", access.certificateFile, "for mqtts://: the client's own")
      .reads("FILE");
  command.add("--mqtt-key", access.keyFile, "the key to that certificate").reads("FILE");
}

}  // namespace

PublishOptions LiveOptions::publishing() const {
  PublishOptions publishing;
  publishing.address = publishAddress;
  publishing.access = access;
  publishing.spoolFile = spoolFile;
  publishing.spoolBytes = spoolMegabytes * bytesOfMegabyte;
  return publishing;
}

void declareLiveOptions(Options& command, LiveOptions& options) {
  Options live = command.under("Live");
  declarePublishing(live, options);
  declareAccess(live, options.access);
  live.addFlag("--strict", options.isStrict,
               "ends with a message of a topic that is wrong, instead of passing it over");
  live.add("--metrics", options.metricsAddress,
           "serves the numbers of the run for Prometheus; a port alone is the loopback's")
      .typeName("HOST:PORT");
  const auto takeFormat = [&options](const std::string& format) {
    options.logsJson = format == "json";
    return true;
  };
  live.addParsed("--log-format", takeFormat, "",
                 "how the program's own lines look on standard error (default text)")
      .oneOf({"text", "json"});
}

}  // namespace grouptracker
