#include "host/commands/CommandLine.h"

#include "host/base/ExitStatus.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <utility>

namespace grouptracker {

Option& Option::required() {
  m_option->required();
  return *this;
}

Option& Option::typeName(const char* name) {
  m_option->type_name(name);
  return *this;
}

Option& Option::heading(const char* text) {
  m_option->group(text);
  return *this;
}

Option& Option::showDefault() {
  m_option->capture_default_str();
  return *this;
}

Option& Option::within(double lowest, double highest) {
  m_option->check(CLI::Range(lowest, highest));
  return *this;
}

Option& Option::within(int lowest, int highest) {
  m_option->check(CLI::Range(lowest, highest));
  return *this;
}

Option& Option::positive() {
  m_option->check(CLI::PositiveNumber);
  return *this;
}

Option& Option::notNegative() {
  m_option->check(CLI::NonNegativeNumber);
  return *this;
}

Option& Option::oneOf(const std::vector<std::string>& words) {
  m_option->check(CLI::IsMember(words));
  return *this;
}

Option& Option::separatedBy(char separator) {
  m_option->delimiter(separator);
  return *this;
}

template <typename Value>
Option Options::add(const std::string& name, Value& value, const std::string& help) {
  return Option(m_command->add_option(name, value, help));
}

template Option Options::add(const std::string&, std::string&, const std::string&);
template Option Options::add(const std::string&, std::vector<std::string>&, const std::string&);
template Option Options::add(const std::string&, int&, const std::string&);
template Option Options::add(const std::string&, std::optional<int>&, const std::string&);
template Option Options::add(const std::string&, std::vector<int>&, const std::string&);
template Option Options::add(const std::string&, std::int64_t&, const std::string&);
template Option Options::add(const std::string&, std::size_t&, const std::string&);
template Option Options::add(const std::string&, std::optional<std::size_t>&, const std::string&);
template Option Options::add(const std::string&, double&, const std::string&);
template Option Options::add(const std::string&, std::optional<double>&, const std::string&);

Option Options::addFlag(const std::string& name, bool& flag, const std::string& help) {
  return Option(m_command->add_flag(name, flag, help));
}

Option Options::addParsed(const std::string& name, std::function<bool(const std::string&)> take,
                          const std::string& expected, const std::string& help) {
  const auto parse = [name, take = std::move(take), expected](const std::string& text) {
    if (!take(text)) {
      throw CLI::ValidationError(name, expected);
    }
  };
  return Option(m_command->add_option_function<std::string>(name, parse, help));
}

Options Options::addChoice(const std::string& name, std::size_t least, std::size_t most) {
  CLI::App* const choice = m_command->add_option_group(name);
  choice->require_option(least, most);
  return Options(choice);
}

bool Options::wereChosen() const {
  return m_command->parsed();
}

CommandLine::CommandLine(const std::string& description, const std::string& version)
    : m_program(std::make_unique<CLI::App>(description)) {
  m_program->set_version_flag("--version", version);
  m_program->require_subcommand(1);
}

CommandLine::~CommandLine() = default;

Options CommandLine::addCommand(const std::string& name, const std::string& description,
                                const std::string& footer) {
  CLI::App* const command = m_program->add_subcommand(name, description);
  command->footer(footer);
  return Options(command);
}

std::optional<int> CommandLine::parse(int argc, char** argv) {
  try {
    m_program->parse(argc, argv);
  } catch (const CLI::ParseError& failure) {
    return m_program->exit(failure) == 0 ? finished : wrongInput;
  }
  return std::nullopt;
}

}  // namespace grouptracker
