#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>

namespace grouptracker {

/// Work in processes of their own, several at a time: whatever happens to a process, a crash, an
/// exit or running out of time, costs its result only. They are copies of the program that starts
/// them, with all that it has loaded; their standard output and error lead nowhere at first. They
/// die with it.
class ProcessPool {
 public:
  /// What a process does; the parent gets what it returns. Nothing is destroyed behind it.
  using Task = std::function<std::string()>;
  /// Hands out the tasks one by one; an empty one when there are no more.
  using Next = std::function<Task()>;

  /// How a process ended.
  struct End {
    std::size_t task = 0;  ///< from 0, in the order in which they were handed out
    pid_t process = -1;
    std::optional<std::string> result;  ///< none when it died
    int status = 0;                     ///< as waitpid() tells it
    bool isOverdue = false;             ///< ended because its time was over
    double seconds = 0.0;
    double megabytes = 0.0;  ///< of memory, at most

    /// What became of one that died, in a few words.
    std::string fate() const;
  };
  /// Called in the order of completion.
  using Finished = std::function<void(const End&)>;

  ProcessPool(std::size_t processes, std::chrono::seconds patience)
      : m_processes(processes), m_patience(patience) {}

  /// Runs all tasks and returns when the last process has ended. When somebody wishes a stop, all
  /// processes are ended, none is started, and those that died tell nothing more. Not to be used
  /// while the program has threads.
  void run(const Next& next, const Finished& finished) const;

 private:
  std::size_t m_processes;
  std::chrono::seconds m_patience;  ///< after which a process is ended
};

}  // namespace grouptracker
