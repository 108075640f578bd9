#pragma once

#include "host/base/ProcessPool.h"
#include "host/batch/BatchFolder.h"
#include "host/batch/BatchSummary.h"
#include "host/batch/RecordingReader.h"
#include "host/batch/RecordingRules.h"
#include "host/commands/Progress.h"
#include "host/commands/RecordingRun.h"
#include "host/commands/SlurmChoice.h"
#include "host/commands/StopSignals.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace grouptracker {

/// What the user asks of `grouptracker batch`. Texts are empty when the option was not given.
struct BatchOptions {
  std::string manifest;
  std::string folder;             ///< of all results
  std::string scanned;            ///< a folder to make a manifest of
  std::vector<std::string> only;  ///< names of recordings; "-" takes them from standard input
  SlurmChoice slurm;
  std::size_t jobs = 1;
  int patience = 86'400;  ///< seconds for a recording
  bool lists = false;
  bool summarizes = false;
  bool leavesReports = false;
  bool quiet = false;
};

/// One batch from the manifest to the summary. The manifest is walked through several times, a
/// recording at a time, and of each only is kept whether it is open. Errors of the manifest and of
/// the folder are thrown; those of recordings are theirs.
class BatchSession {
 public:
  explicit BatchSession(const BatchOptions& options);

  /// Returns the exit status.
  int run();

 private:
  /// A recording that is being made, and where.
  struct Making {
    Recording recording;
    std::string work;
  };

  bool isManifestGood();
  void takeNames();
  void findOpen();
  bool isOpen(std::size_t index) const { return index < m_isOpen.size() && m_isOpen[index]; }
  void forOpen(const std::function<void(const Recording&)>& take) const;
  void startProgress();
  void makeHere();
  void makeBySlurm();
  void writeOpen(const std::string& path) const;
  void followSlurm(const SlurmArray& array, std::size_t chunk);
  std::string taskLines(const std::string& list, std::size_t chunk) const;
  ProcessPool::Task nextTask();
  void note(const ProcessPool::End& end);
  void noteDeath(const Making& making, const ProcessPool::End& end);
  void say(const std::string& line);
  int summarize();

  BatchOptions m_options;
  StopSignals m_signals;
  RunOptionCheck m_check;
  RecordingRules m_rules;
  BatchFolder m_folder;
  std::vector<std::string> m_wishes;
  std::set<std::string> m_only;  ///< the recordings that count; empty for all
  std::vector<bool> m_isOpen;    ///< by their place in the manifest
  std::size_t m_open = 0;
  std::size_t m_failed = 0;                   ///< of those made now
  std::unique_ptr<RecordingReader> m_reader;  ///< of those to be made here
  std::map<std::size_t, Making> m_made;       ///< those being made, by task
  std::size_t m_started = 0;
  std::size_t m_ended = 0;
  std::optional<Progress> m_progress;
};

}  // namespace grouptracker
