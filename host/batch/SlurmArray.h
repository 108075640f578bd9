#pragma once

#include <QString>
#include <QStringList>

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
    std::size_t left = 0;     ///< tasks that wait or run
    std::size_t running = 0;  ///< of these
    bool isHeld = false;      ///< whether some will never run by themselves
    /// Why tasks wait, when some are held or none has run for a minute; empty otherwise.
    std::string reason;
  };

  /// The script and what the tasks print lie in `folder`, which all machines must see; the site's
  /// options are those of sbatch, as "partition=long".
  SlurmArray(const std::string& folder, const std::vector<std::string>& siteOptions);

  const std::string& folder() const { return m_folder; }
  /// Whether other machines see the folder and further places that the tasks need: one on a file
  /// system that is this machine's own and that a node elsewhere does not find is an `OutputError`.
  /// Returns what could not be found out, since no node had time; empty when all is well.
  std::string checkPlaces(std::vector<std::string> places) const;
  /// How many items a task takes at least, so that there are not more tasks than the site allows
  /// and than make sense.
  std::size_t itemsOfTask(std::size_t items) const;
  /// Submits tasks, numbered from 0 in `SLURM_ARRAY_TASK_ID`, each of which runs the shell's lines
  /// in this process's working folder.
  void submit(const std::string& name, const std::string& lines, std::size_t tasks);
  /// Takes up the array that an earlier submission left in the folder; false when it has ended, and
  /// when a stop is wished before that is known.
  bool takeUp();
  /// Ends the array that an earlier submission left in the folder, if there is one.
  void cancelEarlier();
  /// The array's number with Slurm, behind the option that tells its cluster where it needs one.
  std::string job() const { return arguments({m_job}).join(' ').toStdString(); }
  /// Waits until all tasks have ended; false when a stop is wished before, which leaves them alone.
  /// Long silence of Slurm is an `OutputError`.
  bool follow(const std::function<void(const State&)>& look) const;

  /// Ends all tasks.
  void cancel() const;

  /// A word as the shell takes it.
  static std::string quoted(const std::string& word);

 private:
  QStringList siteOptions(const std::vector<std::string>& names = {}) const;
  QString nodeElsewhere() const;
  bool readJob();
  void takeJob(const QString& text);
  QStringList arguments(const QStringList& more) const;
  std::optional<State> state() const;
  std::optional<State> answered() const;

  std::string m_folder;
  std::vector<std::string> m_siteOptions;
  QString m_job;
  QString m_cluster;  ///< empty for the usual one
};

}  // namespace grouptracker
