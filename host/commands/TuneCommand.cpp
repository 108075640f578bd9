#include "host/commands/TuneCommand.h"

#include <string>

namespace grouptracker {

namespace {

const char* const example = R"(Example:
  grouptracker tune seq_eth:seq_eth/groups.txt zara01:zara01/groups.txt \
    --base samples/parameters/walking.txt --output best.txt --trials 300 --log trials.csv)";

void declareFiles(CLI::App& command, TuneOptions& options) {
  command
      .add_option("INPUT:TRUTH", options.sequences,
                  "annotated inputs, each with the file of its groups")
      ->required();
  command
      .add_option("--further", options.further,
                  "inputs that --leave-one-out never leaves out, such as simulated scenes")
      ->type_name("INPUT:TRUTH");
  command.add_option("--base", options.baseFile, "the values of what is not searched for")
      ->required()
      ->type_name("FILE");
  command.add_option("--output", options.outputFile, "the parameters found")
      ->required()
      ->type_name("FILE");
  command
      .add_option("--space", options.spaceFile,
                  "what is tuned and how far, `name low high linear|logarithmic|whole` a line")
      ->type_name("FILE");
  command.add_option("--log", options.logFile, "all trials as they finish, CSV")->type_name("FILE");
  command.add_flag("--resume", options.resume, "take the trials that the log holds from there");
}

void declareSearch(CLI::App& command, TuneOptions& options) {
  command.add_option("--trials", options.search.trials, "candidates that are tried")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command.add_option("--seed", options.search.seed, "the same seed makes the same search")
      ->capture_default_str();
  command.add_option("--jobs", options.jobs, "processes at a time; changes no result")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command
      .add_option("--worst-share", options.search.worstShare,
                  "share of the worst sequence's score, beside the mean of all")
      ->check(CLI::Range(0.0, 1.0))
      ->capture_default_str();
  command.add_option("--score", options.scoreName, "what is maximised")
      ->check(CLI::IsMember({"sliding", "windowed", "whole", "groups", "pairs"}))
      ->capture_default_str();
  command.add_option("--patience", options.patience, "seconds after which a trial is given up")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command.add_flag("--leave-one-out", options.leaveOneOut,
                   "also tune without each sequence in turn and score it with the result");
  command.add_flag("--quiet", options.quiet, "no progress");
}

}  // namespace

CLI::App* TuneCommand::declare(CLI::App& program) {
  CLI::App* const command = program.add_subcommand(
      "tune", "Searches for the parameters that score best on annotated inputs");
  command->footer(example);
  declareFiles(*command, m_options);
  declareSearch(*command, m_options);
  return command;
}

int TuneCommand::run() {
  TuneSession(m_options).run();
  return finished;
}

}  // namespace grouptracker
