#include "fuzz/FuzzedInput.h"
#include "host/live/ArrivingPeople.h"

namespace grouptracker {

namespace {

/// Reads all messages, also behind those that are wrong, and puts them in order.
void readMessages(std::istream& in) {
  JsonMessages messages(in, fuzzedName, MessageMap(), true);
  ReorderBuffer order(0.1);
  ReorderBuffer::Clock::time_point now;
  const auto handOut = [&order] {
    for (ObservationStep step; order.next(step);) {
    }
  };
  for (bool isThere = true; isThere;) {
    try {
      PeopleMessage message;
      isThere = messages.next(message);
      if (isThere) {
        order.add(std::move(message), now);
      }
    } catch (const InputError&) {
      now += std::chrono::milliseconds(60);
      order.expire(now);
    }
    handOut();
  }
  order.finish();
  handOut();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readFuzzed(data, size, [](std::istream& in) { readMessages(in); });
}

}  // namespace grouptracker
