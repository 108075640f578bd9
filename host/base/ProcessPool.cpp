#include "host/base/ProcessPool.h"

#include "host/base/FileDescriptor.h"
#include "host/base/Interruption.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

using Clock = std::chrono::steady_clock;

struct Worker {
  ProcessPool::End end;
  FileDescriptor results;  ///< at its end when the process has ended
  std::string text;
  Clock::time_point start = Clock::now();
};

/// Who asks a process to stop does not ask its parent, whose handlers it has at first.
void forgetSignals() {
  stop_wish::setDescriptor(-1);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) {
      ::signal(signal, SIG_DFL);
    }
  }
}

/// Sends the task's result and ends the process without touching what it shares with its parent.
[[noreturn]] void work(const ProcessPool::Task& task, int results, pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) {
    ::_exit(1);  // it died before the line above
  }
  forgetSignals();
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  ::dup2(nowhere, STDOUT_FILENO);
  ::dup2(nowhere, STDERR_FILENO);
  int status = 1;
  try {
    const std::string result = task();
    const auto size = static_cast<ssize_t>(result.size());
    status = ::write(results, result.data(), result.size()) == size ? 0 : 1;
  } catch (...) {
    status = 1;  // tells the parent
  }
  ::_exit(status);
}

/// None when the system has no room for one more at this moment.
std::optional<Worker> start(const ProcessPool::Task& task, std::size_t number) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot start a process");
  }
  Worker worker;
  worker.results = FileDescriptor(ends[0]);
  const FileDescriptor writable(ends[1]);
  const pid_t parent = ::getpid();
  worker.end.task = number;
  worker.end.process = ::fork();
  if (worker.end.process == 0) {
    work(task, ends[1], parent);
  }
  if (worker.end.process < 0 && errno == EAGAIN) {
    return std::nullopt;
  }
  if (worker.end.process < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot start a process");
  }
  return worker;
}

/// Takes what there is of the result; true at its end.
bool readResult(Worker& worker) {
  constexpr std::size_t piece = 4096;
  std::array<char, piece> bytes{};
  const ssize_t count = ::read(worker.results.get(), bytes.data(), bytes.size());
  if (count > 0) {
    worker.text.append(bytes.data(), static_cast<std::size_t>(count));
  }
  return count == 0 || (count < 0 && errno != EINTR);
}

ProcessPool::End collect(Worker& worker) {
  constexpr double kilobytes = 1024.0;  // in a megabyte
  rusage usage = {};
  while (::wait4(worker.end.process, &worker.end.status, 0, &usage) < 0 && errno == EINTR) {
  }
  if (worker.end.status == 0) {
    worker.end.result = std::move(worker.text);
  }
  worker.end.megabytes = static_cast<double>(usage.ru_maxrss) / kilobytes;
  worker.end.seconds = std::chrono::duration<double>(Clock::now() - worker.start).count();
  return worker.end;
}

/// The processes that are at work.
class Workers {
 public:
  ~Workers() { endAll(); }

  std::size_t count() const { return m_workers.size(); }
  void add(Worker worker) { m_workers.push_back(std::move(worker)); }
  void endLate(std::chrono::seconds patience);
  void wait(const ProcessPool::Finished& finished);
  void endAll();

 private:
  std::vector<Worker> m_workers;
  std::vector<pollfd> m_watched;
};

void Workers::endLate(std::chrono::seconds patience) {
  for (Worker& worker : m_workers) {
    if (Clock::now() > worker.start + patience) {
      worker.end.isOverdue = true;
      ::kill(worker.end.process, SIGKILL);
    }
  }
}

/// Waits a little for any of them, or for the wish to stop.
void Workers::wait(const ProcessPool::Finished& finished) {
  constexpr int pause = 200;  // ms
  m_watched.clear();
  for (const Worker& worker : m_workers) {
    m_watched.push_back({worker.results.get(), POLLIN, 0});
  }
  m_watched.push_back({stop_wish::descriptor(), POLLIN, 0});
  ::poll(m_watched.data(), m_watched.size(), pause);
  for (std::size_t i = m_workers.size(); i-- > 0;) {
    if (m_watched[i].revents != 0 && readResult(m_workers[i])) {
      Worker worker = std::move(m_workers[i]);
      m_workers.erase(m_workers.begin() + static_cast<std::ptrdiff_t>(i));
      finished(collect(worker));
    }
  }
}

void Workers::endAll() {
  for (Worker& worker : m_workers) {
    ::kill(worker.end.process, SIGKILL);
    collect(worker);
  }
  m_workers.clear();
}

}  // namespace

std::string ProcessPool::End::fate() const {
  if (isOverdue) {
    return fmt::format("took longer than {:.0f} s", seconds);
  }
  if (WIFSIGNALED(status)) {
    const char* const name = ::sigabbrev_np(WTERMSIG(status));
    return fmt::format("ended by SIG{}", name != nullptr ? name : "?");
  }
  return fmt::format("ended with status {}", WEXITSTATUS(status));
}

void ProcessPool::run(const Next& next, const Finished& finished) const {
  Workers workers;
  std::size_t started = 0;
  bool isMore = true;
  Task task;
  while ((isMore || workers.count() > 0) && !stop_wish::isThere()) {
    while (isMore && workers.count() < m_processes) {
      task = task ? task : next();
      isMore = static_cast<bool>(task);
      auto worker = isMore ? start(task, started) : std::nullopt;
      if (!worker) {
        break;  // at the end, or until one of the others has ended
      }
      workers.add(*std::move(worker));
      ++started;
      task = {};
    }
    workers.endLate(m_patience);
    workers.wait(finished);
  }
}

}  // namespace grouptracker
