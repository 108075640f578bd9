#pragma once

#include "host/commands/InputChoice.h"
#include "host/commands/SlurmChoice.h"
#include "host/evaluation/search/TrialRunner.h"
#include "host/evaluation/search/TrialTasks.h"
#include "host/evaluation/search/TuningSearch.h"
#include "host/evaluation/search/WorkerPool.h"
#include "host/run/ParameterFile.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// What the user asks of `grouptracker tune`. Texts are empty when the option was not given.
struct TuneOptions {
  std::vector<std::string> sequences;  ///< INPUT:TRUTH
  std::vector<std::string> further;    ///< INPUT:TRUTH, never left out
  InputChoice reading;                 ///< of all inputs; of the links those that are not tuned
  std::string baseFile;
  std::string outputFile;
  std::string spaceFile;
  std::string logFile;
  std::string scoreName = "sliding";
  SearchOptions search;
  std::size_t jobs = 1;
  int patience = 300;  ///< seconds
  bool resume = false;
  bool leaveOneOut = false;
  bool quiet = false;
  SlurmChoice slurm;
  std::string tasksFile;  ///< of a search elsewhere, of which one part is computed
  std::optional<std::size_t> part;
};

/// One search over all sequences, and one without each of them when that is asked for. Of the base
/// parameters only those count that are not searched for, so that a search does not know what was
/// tuned before on a sequence that is left out. Prints the results, with the link options that
/// belong to the parameters, on standard output.
class TuneSession {
 public:
  explicit TuneSession(const TuneOptions& options);

  void run();
  /// Computes a part of the runs that a search elsewhere wants, and leaves the scores beside them.
  void runTasks();

 private:
  using Sequences = std::vector<const TunedSequence*>;

  Trial search(const Sequences& sequences, const std::string& logFile, const char* purpose);
  void evaluate(std::vector<Trial>& trials, const Sequences& sequences, TrialLog& log,
                const TuningSearch& search, const char* purpose);
  void compute(std::vector<Trial>& trials, const std::vector<std::size_t>& open,
               const Sequences& sequences, const std::string& score, TrialLog& log,
               const char* purpose);
  void computeHere(const TrialTasks& tasks, std::size_t jobs, const WorkerPool::Finished& finished);
  void computeBySlurm(const TrialTasks& tasks, const WorkerPool::Finished& finished);
  void computeAgain(SlurmArray& array, const TrialTasks& tasks,
                    const std::vector<std::size_t>& lost, const WorkerPool::Finished& finished);
  std::vector<std::size_t> computeArray(SlurmArray& array, const TrialTasks& tasks,
                                        std::size_t chunk, const WorkerPool::Finished& finished);
  /// A candidate with the scores that `grouptracker evaluate` would give it.
  Trial evaluated(const Candidate& candidate, const Sequences& sequences, const char* purpose);
  void leaveEachOut(const Trial& result);

  TuneOptions m_options;
  ParameterFile m_base;
  TuningSpace m_space;
  std::vector<TunedSequence> m_sequences;  ///< the further ones at the end
  double m_bestWorth = 0.0;                ///< of the search that goes on
  bool m_isSlurmReady = false;             ///< whether it was found out what Slurm's tasks see
};

}  // namespace grouptracker
