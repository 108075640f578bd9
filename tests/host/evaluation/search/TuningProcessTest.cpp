#include "host/evaluation/search/TrialLog.h"
#include "host/evaluation/search/TrialTasks.h"
#include "host/evaluation/search/WorkerPool.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace grouptracker {

namespace {

TEST(WorkerPool, LosesOnlyTheNumbersOfTasksThatDie) {
  const std::vector<WorkerPool::Task> tasks{
      [] { return 1.5; },
      []() -> double {
        std::raise(SIGKILL);
        return 0.0;
      },
      []() -> double { ::_exit(1); },
      []() -> double { throw std::runtime_error("bad"); },
      []() -> double {
        for (;;) {
          ::pause();
        }
      },
      [] { return 2.5; },
  };
  std::vector<std::optional<double>> results(tasks.size(), -1.0);
  WorkerPool(2, std::chrono::seconds(1)).run(tasks, [&](std::size_t task, auto result) {
    results[task] = result;
  });
  const auto none = std::optional<double>();
  EXPECT_EQ(results, (std::vector<std::optional<double>>{1.5, none, none, none, none, 2.5}));
}

TEST(TrialTaskFiles, BringEveryNumberThereAndBackToTheLastBit) {
  const std::string folder =
      std::filesystem::temp_directory_path() / ("tasks-" + std::to_string(::getpid()));
  std::filesystem::create_directory(folder);
  const TrialTasks tasks{
      {0, "sliding", {0.1 + 0.2, 7.0}}, {3, "pairs", {1e-9, -4.5}}, {0, "windowed", {}}};
  const TrialTaskFiles files(folder + "/tasks", 2);
  files.writeTasks(tasks);
  const TrialTaskFiles there = TrialTaskFiles::open(folder + "/tasks");
  EXPECT_EQ(there.readTasks(0), TrialTasks(tasks.begin(), tasks.begin() + 2));
  EXPECT_EQ(there.readTasks(1), TrialTasks(tasks.begin() + 2, tasks.end()));
  there.writeResults(0, {0.1 + 0.2, std::nullopt});
  std::vector<std::optional<double>> scores;
  const auto take = [&scores](std::size_t, std::optional<double> score) {
    scores.push_back(score);
  };
  std::ofstream(folder + "/tasks.1").close();  // of a process that died while it wrote
  EXPECT_FALSE(files.isComplete(3));
  EXPECT_EQ(files.readResults(3, take), std::vector<std::size_t>{2}) << "nobody knows of it";
  there.writeResults(1, {1.0});
  EXPECT_TRUE(files.isComplete(3));
  scores.clear();
  EXPECT_TRUE(files.readResults(3, take).empty());
  EXPECT_EQ(scores, (std::vector<std::optional<double>>{0.1 + 0.2, std::nullopt, 1.0}));
  std::filesystem::remove_all(folder);
}

class TrialLogFile : public testing::Test {
 protected:
  TrialLogFile() {
    std::istringstream in("distWeight: 0 10 linear\n");
    m_space = TuningSpace::read(in, "space.txt");
  }
  ~TrialLogFile() override { std::filesystem::remove(m_path); }
  std::string text() const {
    std::ifstream in(m_path);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  std::string m_path =
      std::filesystem::temp_directory_path() / ("trials-" + std::to_string(::getpid()) + ".csv");
  TuningSpace m_space;
};

TEST_F(TrialLogFile, AnswersForTrialsOfAnEarlierRun) {
  {
    TrialLog log(m_path, {"a", "b"}, m_space, false);
    log.write({2, {0.1}, {0.1 + 0.2, std::nullopt}});
    log.write({1, {7.0}, {0.5, 0.25}});
  }
  TrialLog resumed(m_path, {"a", "b"}, m_space, true);
  Trial trial{2, {0.1}, {}};
  ASSERT_TRUE(resumed.recall(trial));
  EXPECT_EQ(trial.scores, (std::vector<std::optional<double>>{0.1 + 0.2, std::nullopt}));
  Trial unknown{3, {7.0}, {}};
  EXPECT_FALSE(resumed.recall(unknown));
  EXPECT_EQ(text(), "trial,a,b,distWeight:\n1,0.5,0.25,7\n2,0.30000000000000004,died,0.1\n");
}

TEST_F(TrialLogFile, RefusesTheTrialsOfAnotherSearch) {
  TrialLog(m_path, {"a"}, m_space, false).write({1, {7.0}, {0.5}});
  EXPECT_THROW(TrialLog(m_path, {"b"}, m_space, true), std::runtime_error);
  const TrialLog log(m_path, {"a"}, m_space, true);
  Trial other{1, {8.0}, {}};
  EXPECT_THROW(log.recall(other), std::runtime_error);
}

}  // namespace

}  // namespace grouptracker
