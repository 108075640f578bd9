#pragma once

#include "host/live/MessageMap.h"
#include "host/people/ObservationSource.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Everybody seen at one moment, as somebody tells it while it happens.
struct PeopleMessage {
  std::optional<std::int64_t> frame;  ///< the sender's own number
  std::optional<double> time;         ///< seconds by the sender's clock
  InputPlace place;                   ///< where it stands in the input, for messages
  std::vector<Observation> people;    ///< in ascending order of persons, each once
};

/// What no message of an honest sender exceeds. People are looked at in pairs, so that twice as
/// many cost four times as much.
struct MessageLimits {
  std::size_t bytes = std::size_t{1024} * 1024;
  std::size_t nesting = 32;  ///< objects and arrays within each other
  std::size_t people = 1000;
  std::size_t idBytes = 256;
};

/// Reads people messages:
///
///     {"time": 1763720000.123, "frame": 17,
///      "people": [{"id": "a7f0", "x": 1.2, "y": 3.4, "box": [left, top, width, height]}]}
///
/// x and y are metres on the ground, boxes pixels. Frame and time may be missing or null; so may a
/// box, or with a camera x and y. An id is a number or a text. A time may also be a text in ISO
/// 8601, UTC unless it says otherwise. Unknown keys are ignored. What is wrong is a `ValueProblem`.
class PeopleMessageParser {
 public:
  PeopleMessageParser(MessageMap map, bool hasCamera, const MessageLimits& limits = {});
  ~PeopleMessageParser();

  PeopleMessage parse(const std::string& text);

 private:
  struct Json;

  MessageMap m_map;
  bool m_hasCamera;
  MessageLimits m_limits;
  std::unique_ptr<Json> m_json;
};

/// What is wrong with more people than the limit says.
std::string tooMany(std::size_t people);

/// Whether a text could be such a message.
bool isPeopleMessage(const std::string& text, const MessageMap& map);

}  // namespace grouptracker
