#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace grouptracker {

/// Computes numbers in processes of their own, several at a time: whatever happens to a process, a
/// crash, an exit or running out of time, costs its number only.
class WorkerPool {
 public:
  using Task = std::function<double()>;
  /// Called in the order of completion; none for a task that died.
  using Finished = std::function<void(std::size_t task, std::optional<double> result)>;

  WorkerPool(std::size_t workers, std::chrono::seconds patience)
      : m_workers(workers), m_patience(patience) {}

  /// Runs all tasks and returns when the last has finished. Not to be used while the program has
  /// threads.
  void run(const std::vector<Task>& tasks, const Finished& finished) const;

 private:
  std::size_t m_workers;
  std::chrono::seconds m_patience;  ///< after which a task is ended
};

}  // namespace grouptracker
