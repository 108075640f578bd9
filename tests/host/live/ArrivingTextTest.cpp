#include "host/base/FileDescriptor.h"
#include "host/live/ArrivingPeople.h"
#include "host/live/ArrivingText.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>

namespace grouptracker {

namespace {

using std::chrono::milliseconds;

/// A pipe, and the text that arrives out of it.
class Arriving : public testing::Test {
 protected:
  static std::pair<FileDescriptor, FileDescriptor> pipe() {
    std::array<int, 2> ends{-1, -1};
    EXPECT_EQ(::pipe(ends.data()), 0);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
  }
  void send(const std::string& bytes) const {
    ASSERT_EQ(::write(ends.second.get(), bytes.data(), bytes.size()),
              static_cast<ssize_t>(bytes.size()));
  }

  std::pair<FileDescriptor, FileDescriptor> ends = pipe();
  std::shared_ptr<ArrivingText> text = std::make_shared<ArrivingText>(
      std::make_unique<FileArrival>("/dev/fd/" + std::to_string(ends.first.get())));
};

TEST_F(Arriving, IsThereWhenALineOrTheEndIs) {
  const milliseconds soon(5);
  EXPECT_FALSE(text->arrivesWithin(soon));
  send("\n half a");
  EXPECT_FALSE(text->arrivesWithin(soon));
  send(" line\n\nthe rest");
  EXPECT_TRUE(text->arrivesWithin(soon));
  EXPECT_EQ(text->firstLine(), "half a line");
  std::string line;
  for (const char* const expected : {"", " half a line", ""}) {
    ASSERT_TRUE(std::getline(text->stream(), line));
    EXPECT_EQ(line, expected);
  }
  EXPECT_FALSE(text->arrivesWithin(soon));
  ends.second = FileDescriptor();
  EXPECT_TRUE(text->arrivesWithin(soon));
  ASSERT_TRUE(std::getline(text->stream(), line));
  EXPECT_EQ(line, "the rest");
  EXPECT_TRUE(text->arrivesWithin(soon));
}

TEST_F(Arriving, HoldsNobodyUpWhoWaitsBesideHalfALine) {
  const auto message = [](int frame) {
    return "{\"frame\": " + std::to_string(frame) + ", \"people\": []}\n";
  };
  ArrivalOptions options;
  options.maxLateness = 0.02;
  auto reader = std::make_unique<JsonMessages>(text->stream(), text->name(), MessageMap(), false);
  ArrivingPeople people(text, std::move(reader), options);
  send(message(1) + message(2) + message(3).substr(0, 9));
  const std::jthread late([this] {
    std::this_thread::sleep_for(milliseconds(500));
    ends.second = FileDescriptor();
  });
  const auto begin = std::chrono::steady_clock::now();
  ObservationStep step;
  ASSERT_TRUE(people.next(step));
  EXPECT_EQ(step.frame, 1);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(400));
}

}  // namespace

}  // namespace grouptracker
