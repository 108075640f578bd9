// How long it takes from the sending of a people message to the arrival of the line of groups that
// it completes, over a broker on the loopback, at 25 messages a second and without look-ahead, with
// a spool on the disk, events and numbers to be watched as a service has them; beside it what the
// broker alone needs to pass on the same bytes twice. The spool lies in the working folder. Fails
// when the 99th percentile for 50 people is not below 5 ms:
//
//     live_latency PROGRAM [SECONDS]

#include "tests/support/live/Broker.h"
#include "tests/support/live/MqttPeer.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <string>
#include <thread>
#include <vector>

using namespace grouptracker;

namespace {

using Clock = MqttPeer::Clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int rate = 25;          // messages per second
constexpr double wanted = 5.0;    // ms at the 99th percentile
constexpr int wantedFor = 50;     // people
constexpr int warmUp = 2 * rate;  // messages until the order of messages is known

/// Pairs that walk in circles; every 20 s another pair takes the place of each, so that things
/// happen.
std::string messageOf(int frame, int people) {
  std::string all;
  for (int person = 0; person < people; ++person) {
    const int round = (frame + 7 * rate * (person / 2)) / (20 * rate);
    const double angle = 0.1 * (person / 2) + 0.004 * frame;
    const double radius = 5.0 + 0.8 * (person / 2);
    all += fmt::format("{}{{\"id\": \"guest-{}-{}\", \"x\": {:.3f}, \"y\": {:.3f}}}",
                       all.empty() ? "" : ", ", person, round, radius * std::cos(angle),
                       radius * std::sin(angle) + 0.6 * (person % 2));
  }
  return fmt::format("{{\"time\": {:.3f}, \"frame\": {}, \"people\": [{}]}}",
                     static_cast<double>(frame) / rate, frame, all);
}

double part(std::vector<double> values, double share) {
  std::sort(values.begin(), values.end());
  return values.empty()
             ? std::nan("")
             : values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

std::string median99(const std::vector<double>& values) {
  return fmt::format("{:6.2f} {:6.2f}", part(values, 0.5), part(values, 0.99));
}

/// Sends what `text` makes of each frame, 25 times a second; the moments of sending.
template <typename Text>
std::vector<Clock::time_point> sendAll(MqttPeer& peer, const std::string& topic, int frames,
                                       const Text& text) {
  std::vector<Clock::time_point> sent;
  const auto start = Clock::now();
  for (int frame = 0; frame < frames; ++frame) {
    const std::string payload = text(frame);
    std::this_thread::sleep_until(start + std::chrono::milliseconds(1000 / rate * frame));
    sent.push_back(Clock::now());
    peer.send(topic, payload);
  }
  return sent;
}

/// Milliseconds from sending to arrival, message by message, those of the beginning left out.
std::vector<double> delays(const MqttPeer& peer, const std::string& topic,
                           const std::vector<Clock::time_point>& sent) {
  std::vector<double> all;
  std::size_t at = 0;
  for (const MqttPeer::Message& message : peer.messages()) {
    if (message.topic == topic && at < sent.size()) {
      if (at >= warmUp) {
        all.push_back(Milliseconds(message.arrived - sent[at]).count());
      }
      ++at;
    }
  }
  return all;
}

/// The 99th percentile, in milliseconds.
double measure(const QString& program, int people, int seconds) {
  Broker broker;
  const QTemporaryDir folder(QDir::current().filePath("live_latency-XXXXXX"));
  MqttPeer peer(broker.port(), "measuring", "groups");
  QProcess tracker;
  tracker.setProcessChannelMode(QProcess::ForwardedChannels);
  tracker.start(program, {"run", QString::fromStdString(broker.address("people")), "--publish",
                          QString::fromStdString(broker.address("groups")), "--spool",
                          folder.filePath("groups.spool"), "--metrics", "0", "--look-ahead", "0",
                          "--rate", QString::number(rate), "--diagnostics", "none", "--mobile-dump",
                          "none", "--quiet"});
  peer.await("groups/status", 1);
  broker.awaitSubscription("people");
  const int frames = warmUp + seconds * rate;
  const auto sent =
      sendAll(peer, "people", frames, [&](int frame) { return messageOf(frame, people); });
  peer.await("groups", sent.size());
  const auto lines = peer.messages("groups");
  tracker.terminate();
  tracker.waitForFinished();
  const auto echoed = [&](const std::string& topic, const auto& text) {
    const auto times = sendAll(peer, topic, warmUp + 8 * rate, text);
    peer.await(topic, times.size());
    return delays(peer, topic, times);
  };
  std::vector<double> there =
      echoed("groups/there", [&](int frame) { return messageOf(frame, people); });
  const std::vector<double> back =
      echoed("groups/back", [&](int frame) { return lines[static_cast<std::size_t>(frame)]; });
  for (std::size_t i = 0; i < std::min(there.size(), back.size()); ++i) {
    there[i] += back[i];
  }
  const std::vector<double> taken = delays(peer, "groups", sent);
  fmt::print("{:6} {}   {}\n", people, median99(taken), median99(there));
  return part(taken, 0.99);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    fmt::print(stderr, "live_latency PROGRAM [SECONDS]\n");
    return EXIT_FAILURE;
  }
  const int seconds = argc > 2 ? std::atoi(argv[2]) : 60;
  fmt::print("people  message to line   broker alone, both ways   (ms: median, 99th percentile)\n");
  bool isGood = true;
  for (const int people : {10, 50, 200}) {
    const double slowest = measure(argv[1], people, seconds);
    isGood = isGood && (people != wantedFor || slowest < wanted);
  }
  fmt::print("the 99th percentile for {} people is {}below {} ms\n", wantedFor,
             isGood ? "" : "NOT ", wanted);
  return isGood ? EXIT_SUCCESS : EXIT_FAILURE;
}
