#include "host/commands/CommandLine.h"

#include "host/base/ExitStatus.h"
#include "host/base/Log.h"
#include "host/base/Suggestion.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <utility>

namespace grouptracker {

namespace {

/// What is wrong with a word that is no command or no option, whatever else the parser misses
/// because of it; none when all words are known.
std::optional<std::string> slipIn(CLI::App& program) {
  const std::vector<CLI::App*> chosen = program.get_subcommands();
  const std::vector<std::string> rest = program.remaining(true);
  std::vector<std::string> known;
  if (chosen.empty()) {
    for (const CLI::App* const command : program.get_subcommands(nullptr)) {
      known.push_back(command->get_name());
    }
    return rest.empty() || rest.front().starts_with('-')
               ? std::nullopt
               : std::optional(rest.front() + " is no command" + didYouMean(rest.front(), known));
  }
  const auto isOption = [](const std::string& word) { return word.starts_with("--"); };
  const auto found = std::find_if(rest.begin(), rest.end(), isOption);
  if (found == rest.end()) {
    return std::nullopt;
  }
  const auto addOptions = [&known](const CLI::App& app) {
    for (const CLI::Option* const option : app.get_options()) {
      for (const std::string& name : option->get_lnames()) {
        known.push_back("--" + name);
      }
    }
  };
  addOptions(*chosen.front());
  for (const CLI::App* const choice : chosen.front()->get_subcommands(nullptr)) {
    addOptions(*choice);  // the options of which some exclude each other
  }
  const std::string word = found->substr(0, found->find('='));
  return fmt::format("{} is no option of {}{}", word, chosen.front()->get_name(),
                     didYouMean(word, known));
}

/// Files of the options of one command, which stand in them without its name.
class CommandConfig : public CLI::ConfigTOML {
 public:
  explicit CommandConfig(std::string command) : m_command(std::move(command)) {}

  std::vector<CLI::ConfigItem> from_config(std::istream& in) const override {
    std::vector<CLI::ConfigItem> options = CLI::ConfigTOML::from_config(in);
    for (CLI::ConfigItem& item : options) {
      if (item.name == lowerInput) {
        item.name = input;
      }
      item.parents.insert(item.parents.begin(), m_command);
    }
    return options;
  }

  // The argument by its place has no dashes, so its name is as it is shown.
  static constexpr const char* input = "INPUT";
  static constexpr const char* lowerInput = "input";

 private:
  std::string m_command;
};

/// What is wrong with the file of the options; none when something else is.
std::optional<std::string> slipInConfig(const CLI::App& program, const CLI::ParseError& failure) {
  const CLI::Option* const config = program.get_config_ptr();
  if (config == nullptr || config->count() == 0) {
    return std::nullopt;
  }
  const auto* const unknown = dynamic_cast<const CLI::ConfigError*>(&failure);
  const auto* const missing = dynamic_cast<const CLI::FileError*>(&failure);
  if (unknown == nullptr && missing == nullptr) {
    return std::nullopt;
  }
  const std::string file = config->as<std::string>();
  return missing != nullptr ? file + ": is missing or not readable"
                            : fmt::format("{}: {}", file, failure.what());
}

/// All options as a file; those that nobody gave and that have no default are comments.
std::string shownConfig(const CLI::App& command) {
  std::istringstream written(command.config_to_str(true, true));
  std::string shown;
  for (std::string line; std::getline(written, line);) {
    const std::string input = std::string(CommandConfig::input) + "=";
    if (line.starts_with(input)) {
      line.replace(0, input.size(), std::string(CommandConfig::lowerInput) + "=");
    }
    shown += (line.ends_with("=\"\"") ? "# " : "") + line + "\n";
  }
  return shown;
}

}  // namespace

CommandLine::CommandLine(const std::string& description, const std::string& version)
    : m_program(std::make_unique<CLI::App>(description)) {
  m_program->set_version_flag("--version", version);
  m_program->require_subcommand(1);
}

CommandLine::~CommandLine() = default;

void CommandLine::endHelpWith(const std::string& footer) {
  m_program->footer(footer);
}

Options CommandLine::addCommand(const std::string& name, const std::string& description,
                                const std::string& footer) {
  CLI::App* const command = m_program->add_subcommand(name, description);
  command->footer(footer);
  return {command, std::make_shared<CommandFiles>()};
}

std::function<std::string()> CommandLine::addConfig(const Options& command) {
  const std::string name = command.parser().get_name();
  CLI::App* const options = m_program->get_subcommand(name);
  m_program->config_formatter(std::make_shared<CommandConfig>(name));
  CLI::Option* const config =
      m_program->set_config("--config", "", "for " + name + ": a file with its options (TOML)");
  Option(config, *command.m_files).reads("FILE");
  m_program->allow_config_extras(CLI::config_extras_mode::error);
  options->fallthrough();
  return [options] { return shownConfig(*options); };
}

std::optional<int> CommandLine::parse(int argc, char** argv) {
  try {
    m_program->parse(argc, argv);
  } catch (const CLI::Success& wish) {
    std::ostringstream text;
    m_program->exit(wish, text, text);
    fmt::print("{}", text.str());
    return finished;
  } catch (const CLI::ParseError& failure) {
    auto slip = slipIn(*m_program);
    slip = slip ? slip : slipInConfig(*m_program, failure);
    const auto chosen = m_program->get_subcommands();
    const std::string command = chosen.empty() ? "" : " " + chosen.front()->get_name();
    program_log::write(
        program_log::Level::error,
        slip.value_or(fmt::format("{}; see grouptracker{} --help", failure.what(), command)));
    return wrongInput;
  }
  return std::nullopt;
}

std::optional<std::string> CommandLine::problemIn(std::vector<std::string> words) {
  std::reverse(words.begin(), words.end());  // the parser takes them from the end
  try {
    m_program->parse(std::move(words));
  } catch (const CLI::ParseError& failure) {
    const auto slip = slipIn(*m_program);
    return slip ? slip : failure.what();
  }
  return std::nullopt;
}

}  // namespace grouptracker
