#include "host/base/OutputError.h"
#include "host/output/BackgroundSink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace grouptracker {

namespace {

using testing::ElementsAre;

/// Notes the steps that arrive, and fails at one of them.
class SlowSink : public StepSink {
 public:
  SlowSink(std::vector<std::uint32_t>& seen, std::uint32_t failsAt)
      : m_seen(seen), m_failsAt(failsAt) {}
  void write(const RunStep& step) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (step.frame == m_failsAt) {
      throw OutputError("disk", "is full");
    }
    m_seen.push_back(step.frame);
  }

 private:
  std::vector<std::uint32_t>& m_seen;
  std::uint32_t m_failsAt;
};

std::unique_ptr<BackgroundSink> background(std::vector<std::uint32_t>& seen,
                                           std::uint32_t failsAt) {
  std::vector<std::unique_ptr<StepSink>> sinks;
  sinks.push_back(std::make_unique<SlowSink>(seen, failsAt));
  return std::make_unique<BackgroundSink>(std::move(sinks));
}

TEST(BackgroundSink, WritesAllStepsInOrderAndTellsAFailureOnce) {
  constexpr std::uint32_t steps = 3 * BackgroundSink::capacity;
  std::vector<std::uint32_t> seen;
  const auto whole = background(seen, 0);
  RunStep step;
  for (step.frame = 1; step.frame <= steps; ++step.frame) {
    whole->write(step);
  }
  whole->finish();
  ASSERT_EQ(seen.size(), std::size_t{steps});
  EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));

  seen.clear();
  const auto failing = background(seen, 2);
  step.frame = 1;
  failing->write(step);
  int failures = 0;
  for (step.frame = 2; step.frame <= steps; ++step.frame) {
    try {
      failing->write(step);
    } catch (const OutputError&) {
      ++failures;
    }
  }
  EXPECT_EQ(failures, 1);
  EXPECT_NO_THROW(failing->finish());
  EXPECT_THAT(seen, ElementsAre(1U));
}

}  // namespace

}  // namespace grouptracker
