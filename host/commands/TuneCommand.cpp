#include "host/base/InputError.h"
#include "host/commands/Command.h"
#include "host/commands/TuneSession.h"

#include <algorithm>
#include <memory>
#include <string>
#include <thread>

namespace grouptracker {

namespace {

/// `grouptracker tune`: searches for the parameters and links that score best on annotated inputs.
class TuneCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  TuneOptions m_options;
};

const char* const tuneExample = R"(Example:
  grouptracker tune seq_eth:seq_eth/groups.txt zara01:zara01/groups.txt \
    --base samples/parameters/walking.txt --output best.txt --trials 300 --log trials.csv)";

void declareFiles(Options& command, TuneOptions& options) {
  command
      .add("INPUT:TRUTH", options.sequences, "annotated inputs, each with the file of its groups")
      .required()
      .readsBoth("TEXT");
  command
      .add("--further", options.further,
           "inputs that --leave-one-out never leaves out, such as simulated scenes")
      .readsBoth("INPUT:TRUTH");
  command.add("--base", options.baseFile, "the values of what is not searched for")
      .required()
      .reads("FILE");
  command.add("--output", options.outputFile, "the parameters found").required().writes("FILE");
  command
      .add("--space", options.spaceFile,
           "what is tuned and how far, `name low high linear|logarithmic|whole` a line")
      .reads("FILE");
  command.add("--log", options.logFile, "all trials as they finish, CSV").writes("FILE");
  command.addFlag("--resume", options.resume, "take the trials that the log holds from there");
}

void declareSearch(Options& command, TuneOptions& options) {
  command.add("--trials", options.search.trials, "candidates that are tried")
      .positive()
      .showDefault();
  command.add("--seed", options.search.seed, "the same seed makes the same search").showDefault();
  options.jobs = std::max(1U, std::thread::hardware_concurrency());
  command.add("--jobs", options.jobs, "trials at a time; changes no result")
      .positive()
      .showDefault();
  command
      .add("--worst-share", options.search.worstShare,
           "share of the worst sequence's score, beside the mean of all")
      .within(0.0, 1.0)
      .showDefault();
  command.add("--score", options.scoreName, "what is maximised")
      .oneOf({"sliding", "windowed", "whole", "groups", "pairs"})
      .showDefault();
  command.add("--patience", options.patience, "seconds after which a trial is given up")
      .positive()
      .showDefault();
  command.addFlag("--leave-one-out", options.leaveOneOut,
                  "also tune without each sequence in turn and score it with the result");
  command.addFlag("--quiet", options.quiet, "no progress");
}

void declareMachines(Options& command, TuneOptions& options) {
  Options machines = command.under("On many machines");
  declareSlurm(machines, options.slurm, "who computes the trials; changes no result", "runs");
  machines
      .add("--tasks", options.tasksFile,
           "instead of searching, computes a part of the runs that a search wants: what a task of "
           "Slurm calls, with the options of the search")
      .reads("FILE");
  machines.add("--part", options.part, "which part, from 0");
}

}  // namespace

Options TuneCommand::declare(CommandLine& program) {
  Options command = program.addCommand("tune",
                                       "Searches for the parameters of the process with which what "
                                       "it puts out (run --actors) scores "
                                       "best on annotated inputs",
                                       tuneExample);
  declareFiles(command, m_options);
  declareSearch(command, m_options);
  declareMachines(command, m_options);
  declareReading(command, m_options.reading);
  return command;
}

int TuneCommand::run() {
  m_options.slurm.check();
  if (m_options.part && m_options.tasksFile.empty()) {
    throw InputError("--part", "has no sense without --tasks");
  }
  TuneSession session(m_options);
  m_options.tasksFile.empty() ? session.run() : session.runTasks();
  return finished;
}

std::unique_ptr<Command> makeTuneCommand() {
  return std::make_unique<TuneCommand>();
}

}  // namespace grouptracker
