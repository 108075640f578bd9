#pragma once

#include "host/batch/SlurmArray.h"
#include "host/commands/Options.h"

#include <cstddef>
#include <string>
#include <vector>

namespace grouptracker {

/// How the work of a command is spread over machines, as the user says it.
struct SlurmChoice {
  std::string engine = "here";
  std::vector<std::string> siteOptions;  ///< of sbatch, "name=value"
  std::size_t chunk = 0;                 ///< items of a task; 0 for as many as make sense

  bool isWanted() const { return engine == "slurm"; }
  /// What only Slurm's tasks need is an `InputError` without them.
  void check() const;
  std::size_t chunkOf(const SlurmArray& array, std::size_t items) const;
};

/// Adds the options to a command; `who` and `items` are what its help calls those that work and
/// what they work at. They outlive the parsing.
void declareSlurm(Options& command, SlurmChoice& choice, const std::string& who,
                  const std::string& items);

/// The program itself and the words of its command line, byte for byte, for tasks to be started in
/// the same way. The first word is the program as it was called.
std::string ownProgram();
std::vector<std::string> ownArguments();

}  // namespace grouptracker
