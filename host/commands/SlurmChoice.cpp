#include "host/commands/SlurmChoice.h"

#include "host/base/InputError.h"

#include <filesystem>
#include <fstream>

namespace grouptracker {

void SlurmChoice::check() const {
  if (!isWanted() && (!siteOptions.empty() || chunk > 0)) {
    throw InputError(chunk > 0 ? "--chunk" : "--slurm-option",
                     "has no sense without --engine slurm");
  }
}

std::size_t SlurmChoice::chunkOf(const SlurmArray& array, std::size_t items) const {
  return chunk > 0 ? chunk : array.itemsOfTask(items);
}

void declareSlurm(Options& command, SlurmChoice& choice, const std::string& who,
                  const std::string& items) {
  command.add("--engine", choice.engine, who).oneOf({"here", "slurm"}).showDefault();
  command
      .add("--slurm-option", choice.siteOptions,
           "an option of sbatch, such as partition=long; can be given several times")
      .repeatable()
      .typeName("NAME=VALUE");
  command
      .add("--chunk", choice.chunk,
           items + " of a task of Slurm (default: as many as make a thousand tasks at most)")
      .positive()
      .typeName("N");
}

std::string ownProgram() {
  return std::filesystem::read_symlink("/proc/self/exe");
}

std::vector<std::string> ownArguments() {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  std::vector<std::string> words;
  for (std::string word; std::getline(file, word, '\0');) {
    words.push_back(word);
  }
  return words;
}

}  // namespace grouptracker
