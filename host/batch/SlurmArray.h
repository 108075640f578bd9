#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Work that the tasks of one array of Slurm do on many machines. Tasks that lose their machine are
/// started again by Slurm. The commands of Slurm are called as a user would; one that is missing or
/// refuses is an `OutputError` with what it says.
class SlurmArray {
 public:
  struct State {
    std::size_t left = 0;  ///< tasks that wait or run
    std::string held;      ///< why some will never run by themselves; empty when all is well
  };

  /// The script and what the tasks print lie in `folder`, which all machines must see; the site's
  /// options are those of sbatch, as "partition=long".
  SlurmArray(const std::string& folder, const std::vector<std::string>& siteOptions);

  /// Whether other machines see the folder: a file system that is this machine's own, and a node
  /// elsewhere that does not find it, are an `OutputError`.
  void checkFolder() const;
  /// How many items a task takes at least, so that there are not more tasks than the site allows
  /// and than make sense.
  std::size_t itemsOfTask(std::size_t items) const;
  /// Submits tasks, numbered from 0 in `SLURM_ARRAY_TASK_ID`, each of which runs the shell's lines
  /// in this process's working folder.
  void submit(const std::string& name, const std::string& lines, std::size_t tasks);
  /// Takes up the array that an earlier submission left in the folder; false when it has ended.
  bool takeUp();
  /// The array's number with Slurm.
  const std::string& job() const { return m_job; }
  /// Waits until all tasks have ended; false when a stop is wished before, which leaves them alone.
  bool follow(const std::function<void(const State&)>& look) const;

  /// Ends all tasks.
  void cancel() const;

  /// A word as the shell takes it.
  static std::string quoted(const std::string& word);

 private:
  std::optional<State> state() const;

  std::string m_folder;
  std::vector<std::string> m_siteOptions;
  std::string m_job;
};

}  // namespace grouptracker
