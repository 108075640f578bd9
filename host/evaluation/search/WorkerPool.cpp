#include "host/evaluation/search/WorkerPool.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace grouptracker {

namespace {

using Clock = std::chrono::steady_clock;

struct Worker {
  std::size_t task = 0;
  pid_t process = -1;
  int results = -1;  ///< readable when the process has ended or written
  Clock::time_point deadline;
};

/// Sends the task's result and ends the process without touching what it shares with its parent.
[[noreturn]] void work(const WorkerPool::Task& task, int results) {
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  ::dup2(nowhere, STDOUT_FILENO);
  ::dup2(nowhere, STDERR_FILENO);
  int status = 1;
  try {
    const double result = task();
    status = ::write(results, &result, sizeof result) == sizeof result ? 0 : 1;
  } catch (...) {
    status = 1;  // the missing result tells the parent
  }
  ::_exit(status);
}

Worker start(const WorkerPool::Task& task, std::size_t number, std::chrono::seconds patience) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot start a worker");
  }
  const pid_t process = ::fork();
  if (process == 0) {
    work(task, ends[1]);
  }
  ::close(ends[1]);
  if (process < 0) {
    ::close(ends[0]);
    throw std::system_error(errno, std::generic_category(), "cannot start a worker");
  }
  return {number, process, ends[0], Clock::now() + patience};
}

std::optional<double> collect(const Worker& worker) {
  double result = 0.0;
  const bool isThere = ::read(worker.results, &result, sizeof result) == sizeof result;
  ::close(worker.results);
  int status = 0;
  ::waitpid(worker.process, &status, 0);
  return isThere && status == 0 ? std::optional(result) : std::nullopt;
}

/// Waits a little for any of the workers; ends those whose time is over.
void wait(const std::vector<Worker>& workers, std::vector<pollfd>& watched) {
  constexpr int pause = 200;  // ms
  watched.clear();
  for (const Worker& worker : workers) {
    if (Clock::now() > worker.deadline) {
      ::kill(worker.process, SIGKILL);
    }
    watched.push_back({worker.results, POLLIN, 0});
  }
  ::poll(watched.data(), watched.size(), pause);
}

}  // namespace

void WorkerPool::run(const std::vector<Task>& tasks, const Finished& finished) const {
  std::vector<Worker> workers;
  std::vector<pollfd> watched;
  std::size_t next = 0;
  while (next < tasks.size() || !workers.empty()) {
    while (next < tasks.size() && workers.size() < m_workers) {
      workers.push_back(start(tasks[next], next, m_patience));
      ++next;
    }
    wait(workers, watched);
    for (std::size_t i = workers.size(); i-- > 0;) {
      if (watched[i].revents != 0) {
        const Worker worker = workers[i];
        workers.erase(workers.begin() + static_cast<std::ptrdiff_t>(i));
        finished(worker.task, collect(worker));
      }
    }
  }
}

}  // namespace grouptracker
