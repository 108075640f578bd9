#include "host/base/InputError.h"
#include "host/base/Log.h"
#include "host/base/OutputPlace.h"
#include "host/batch/ManifestScan.h"
#include "host/commands/BatchSession.h"
#include "host/commands/Command.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

namespace grouptracker {

namespace {

/// `grouptracker batch`: runs many recordings.
class BatchCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  void declareMaking(Options& command);
  void checkOptions() const;
  int scan() const;

  BatchOptions m_options;
};

const char* const batchExample =
    R"(A manifest is CSV, or TOML with [[recording]] and [defaults]. It names recordings and
inputs, and may give truths and any option of run, paths as its own folder sees them:
  name,input,truth,rate,events
  north,north/tracks.csv,north/groups.txt,25,events.jsonl

Examples:
  grouptracker batch --scan recordings manifest.csv
  grouptracker batch manifest.csv --output results
  grouptracker batch manifest.csv --output results --engine slurm --slurm-option partition=long
  grouptracker batch manifest.csv --output results --list)";

}  // namespace

Options BatchCommand::declare(CommandLine& program) {
  Options command =
      program.addCommand("batch", "Runs many recordings, here or by Slurm", batchExample);
  command
      .add("MANIFEST", m_options.manifest,
           "the recordings, CSV or *.toml; with --scan what is written")
      .typeName("FILE");
  command
      .add("--output", m_options.folder,
           "the folder of all results; what is done there already is not made again")
      .typeName("FOLDER");
  command
      .add("--scan", m_options.scanned,
           "instead of running, writes a manifest (default: on standard output) of the recordings "
           "below a folder")
      .typeName("FOLDER");
  declareMaking(command);
  declareSlurm(command, m_options.slurm, "who runs them", "recordings");
  return command;
}

void BatchCommand::declareMaking(Options& command) {
  m_options.jobs = std::max(1U, std::thread::hardware_concurrency());
  command
      .add("--jobs", m_options.jobs, "recordings at a time, for --engine here; changes no result")
      .positive()
      .showDefault();
  command.add("--patience", m_options.patience, "seconds after which a recording is given up")
      .positive()
      .showDefault();
  command.addFlag("--no-report", m_options.leavesReports, "makes no report of each recording");
  command.addFlag("--list", m_options.lists, "instead of running, prints what is not done");
  command
      .add("--only", m_options.only,
           "only this recording, without a summary; can be given several times, - takes names from "
           "standard input, one a line")
      .repeatable()
      .typeName("NAME");
  command.addFlag("--summary", m_options.summarizes,
                  "instead of running, sums up what other engines have made");
  command.addFlag("--quiet", m_options.quiet, "no progress and no last line");
}

/// What would change nothing is told, rather than passed over.
void BatchCommand::checkOptions() const {
  m_options.slurm.check();
  const bool isScan = !m_options.scanned.empty();
  if (!m_options.only.empty() && (isScan || m_options.summarizes)) {
    throw InputError("--only", isScan ? "has no sense with --scan" : "has no sense with --summary");
  }
  if (isScan && !m_options.folder.empty()) {
    throw InputError("--output", "has no sense with --scan");
  }
}

int BatchCommand::run() {
  checkOptions();
  if (!m_options.scanned.empty()) {
    return scan();
  }
  if (m_options.manifest.empty() || m_options.folder.empty()) {
    throw InputError(m_options.manifest.empty() ? "MANIFEST" : "--output",
                     m_options.manifest.empty() ? "a file that names the recordings is expected"
                                                : "a folder for the results is expected");
  }
  if (std::filesystem::exists(m_options.manifest) &&
      !std::filesystem::is_regular_file(m_options.manifest)) {
    throw InputError(m_options.manifest, "a file is expected, which can be read several times");
  }
  return BatchSession(m_options).run();
}

int BatchCommand::scan() const {
  const std::string manifest = m_options.manifest.empty() ? "-" : m_options.manifest;
  if (manifest.ends_with(".toml") || (manifest != "-" && std::filesystem::exists(manifest))) {
    throw OutputError(manifest, "a new file for a manifest as CSV is expected");
  }
  const std::size_t count = writeManifestOf(m_options.scanned, manifest);
  if (!m_options.quiet) {
    program_log::write(program_log::Level::info, fmt::format("{} recordings", count));
  }
  return finished;
}

std::unique_ptr<Command> makeBatchCommand() {
  return std::make_unique<BatchCommand>();
}

}  // namespace grouptracker
