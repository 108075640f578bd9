#include "host/base/FileDescriptor.h"
#include "host/base/Interruption.h"
#include "host/base/ProcessPool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <map>
#include <unistd.h>
#include <vector>

namespace grouptracker {

namespace {

/// Hands out tasks in their order.
ProcessPool::Next handingOut(std::vector<ProcessPool::Task> tasks) {
  return [tasks = std::move(tasks), next = std::size_t{0}]() mutable {
    return next == tasks.size() ? ProcessPool::Task() : tasks[next++];
  };
}

std::string waitForever() {
  for (;;) {
    ::pause();
  }
}

TEST(ProcessPool, TellsTheFateOfEachProcess) {
  const std::string large(200'000, 'x');  // more than a pipe holds
  const auto crash = []() -> std::string {
    std::raise(SIGABRT);  // a sanitizer would answer SIGSEGV itself
    return {};
  };
  const auto leave = []() -> std::string { ::_exit(7); };
  std::map<std::size_t, ProcessPool::End> ends;
  ProcessPool(2, std::chrono::seconds(1))
      .run(handingOut({[&large] { return large; }, crash, waitForever, leave}),
           [&ends](const ProcessPool::End& end) { ends[end.task] = end; });
  ASSERT_EQ(ends.size(), 4U);
  EXPECT_EQ(ends[0].result, large);
  EXPECT_GT(ends[0].megabytes, 0.0);
  EXPECT_EQ(ends[1].fate(), "ended by SIGABRT");
  EXPECT_EQ(ends[2].fate(), "took longer than 1 s");
  EXPECT_EQ(ends[3].fate(), "ended with status 7");
}

TEST(ProcessPool, EndsAllWhenSomebodyWishesAStop) {
  std::array<int, 2> ends{-1, -1};
  ASSERT_EQ(::pipe(ends.data()), 0);
  const FileDescriptor wish(ends[0]);
  const FileDescriptor wishing(ends[1]);
  stop_wish::setDescriptor(wish.get());
  int finished = 0;
  const auto ask = [&wishing]() -> std::string {
    return ::write(wishing.get(), "x", 1) == 1 ? "asked" : "";
  };
  ProcessPool(2, std::chrono::seconds(60))
      .run(handingOut({waitForever, ask, waitForever}),
           [&](const ProcessPool::End&) { ++finished; });
  stop_wish::setDescriptor(-1);
  EXPECT_LE(finished, 1) << "and it has not waited for the others";
}

}  // namespace

}  // namespace grouptracker
