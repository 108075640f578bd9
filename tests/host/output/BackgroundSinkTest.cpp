#include "host/base/OutputPlace.h"
#include "host/output/BackgroundSink.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

/// What reaches a sink, noted without a lock: whoever looks at it while the sink still writes would
/// be a data race.
struct Arrived {
  RunSteps steps;
  int finishes = 0;
};

/// Notes what arrives, and fails at one step.
class NotingSink : public StepSink {
 public:
  NotingSink(Arrived& arrived, std::uint32_t failsAt, bool isSlow)
      : m_arrived(arrived), m_failsAt(failsAt), m_isSlow(isSlow) {}
  void write(const RunStep& step) override {
    if (m_isSlow) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (step.frame == m_failsAt) {
      throw OutputError("disk", "is full");
    }
    m_arrived.steps.push_back(step);
  }
  void finish() override { ++m_arrived.finishes; }

 private:
  Arrived& m_arrived;
  std::uint32_t m_failsAt;
  bool m_isSlow;
};

constexpr std::uint32_t never = 0;

std::unique_ptr<NotingSink> fastSink(Arrived& arrived, std::uint32_t failsAt = never) {
  return std::make_unique<NotingSink>(arrived, failsAt, false);
}

std::unique_ptr<NotingSink> slowSink(Arrived& arrived, std::uint32_t failsAt = never) {
  return std::make_unique<NotingSink>(arrived, failsAt, true);
}

template <typename... Sinks>
std::unique_ptr<BackgroundSink> background(Sinks... some) {
  std::vector<std::unique_ptr<StepSink>> sinks;
  (sinks.push_back(std::move(some)), ...);
  return std::make_unique<BackgroundSink>(std::move(sinks));
}

/// Makes the step that of a frame, with memory of its own in it.
void become(RunStep& step, std::uint32_t frame) {
  step.frame = frame;
  step.persons.assign(frame % 5, RunPerson{frame, {}});
  step.groups.resize(1);
  step.groups.front().properties = {
      {"Name", "of more letters than fit in place " + std::to_string(frame)}};
}

RunSteps stepsUpTo(std::uint32_t last) {
  RunSteps steps(last);
  for (std::uint32_t frame = 1; frame <= last; ++frame) {
    become(steps[frame - 1], frame);
  }
  return steps;
}

// The writer changes its step while earlier ones are still being written.
TEST(BackgroundSink, WritesAllStepsAsTheyWereToEverySink) {
  constexpr std::uint32_t count = 40 * BackgroundSink::capacity;
  Arrived first;
  Arrived second;
  const auto sink = background(fastSink(first), fastSink(second));
  RunStep step;
  for (std::uint32_t frame = 1; frame <= count; ++frame) {
    become(step, frame);
    if (frame % 2 == 0) {
      sink->write(step);
    } else {
      sink->take(RunStep(step));
    }
  }
  sink->finish();
  EXPECT_TRUE(first.steps == stepsUpTo(count));
  EXPECT_TRUE(second.steps == stepsUpTo(count));
  EXPECT_EQ(first.finishes, 1);
  EXPECT_EQ(second.finishes, 1);
}

TEST(BackgroundSink, WaitsForASlowSinkAndWritesWhatIsLeftWhenItGoes) {
  constexpr std::uint32_t count = 2 * BackgroundSink::capacity;
  Arrived arrived;
  {
    const auto sink = background(slowSink(arrived));
    for (const RunStep& step : stepsUpTo(count)) {
      sink->write(step);
    }
  }
  EXPECT_TRUE(arrived.steps == stepsUpTo(count));
  EXPECT_EQ(arrived.finishes, 0) << "nobody asked for it";
}

TEST(BackgroundSink, TellsAFailureOnceAndStillFinishesAll) {
  constexpr std::uint32_t count = 3 * BackgroundSink::capacity;
  Arrived failing;
  Arrived other;
  const auto sink = background(slowSink(failing, 2), fastSink(other));
  int failures = 0;
  for (const RunStep& step : stepsUpTo(count)) {
    try {
      sink->write(step);
    } catch (const OutputError&) {
      ++failures;
    }
  }
  EXPECT_EQ(failures, 1);
  EXPECT_NO_THROW(sink->finish());
  EXPECT_TRUE(failing.steps == stepsUpTo(1));
  EXPECT_TRUE(other.steps == stepsUpTo(1));
  EXPECT_EQ(failing.finishes + other.finishes, 2);

  Arrived late;
  const auto failingLast = background(slowSink(late, 3));
  for (const RunStep& step : stepsUpTo(3)) {
    failingLast->write(step);
  }
  EXPECT_THROW(failingLast->finish(), OutputError);
  EXPECT_TRUE(late.steps == stepsUpTo(2));
}

}  // namespace

}  // namespace grouptracker
