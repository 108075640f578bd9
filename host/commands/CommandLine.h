#pragma once

#include "host/commands/Options.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// The program's command line.
class CommandLine {
 public:
  CommandLine(const std::string& description, const std::string& version);
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  ~CommandLine();

  /// What ends the program's own help.
  void endHelpWith(const std::string& footer);
  /// Adds a command; `footer` ends its help.
  Options addCommand(const std::string& name, const std::string& description,
                     const std::string& footer);
  /// Lets the options of a command stand in a file as well, which `--config FILE` names, by their
  /// names without dashes; the command line wins. For one command. What is returned tells all
  /// options and their values as such a file.
  std::function<std::string()> addConfig(const Options& command);
  /// Parses what the user wrote. The help, the version or what is wrong is then printed, and the
  /// exit status returned; none when a command was chosen.
  std::optional<int> parse(int argc, char** argv);
  /// The same for words of another origin, about which nothing is printed: what is wrong with them;
  /// none when a command was chosen.
  std::optional<std::string> problemIn(std::vector<std::string> words);

 private:
  std::unique_ptr<CLI::App> m_program;
};

}  // namespace grouptracker
