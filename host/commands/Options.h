#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// NOLINTNEXTLINE(readability-identifier-naming): the name is the parser's own
namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace grouptracker {

struct OptionKind;

/// The files and folders that a command reads and writes, as its options name them.
struct CommandFiles {
  struct Named {
    std::vector<std::string> options;                 ///< without dashes
    std::function<std::vector<std::string>()> files;  ///< as soon as the command line is parsed
  };

  std::vector<Named> read;
  std::vector<Named> written;
};

/// One option of a command, about which more can be said. The parser that stands behind it is known
/// to Options.cpp and CommandLine.cpp only, because its headers take longer to compile than any
/// command.
class Option {
 public:
  Option(CLI::Option* option, CommandFiles& files) : m_option(option), m_files(&files) {}

  Option& required();
  /// What the help says in place of the value's type, such as "FILE".
  Option& typeName(const char* name);
  /// Says that the command reads what the option names, and what the help says in place of the
  /// value's type, such as "FILE". The word behind a bar in it, as in "FILE|none", is no file.
  Option& reads(const char* name);
  /// The same for INPUT:TRUTH, two files in one value.
  Option& readsBoth(const char* name);
  /// Says that the command writes what the option names.
  Option& writes(const char* name);
  /// Lets the help say the value that holds without the option.
  Option& showDefault();
  Option& within(double lowest, double highest);
  Option& within(int lowest, int highest);
  Option& positive();
  Option& notNegative();
  Option& oneOf(const std::vector<std::string>& words);
  /// How many values follow the option.
  Option& count(int values);
  /// Lets the option be given several times, each time with one value.
  Option& repeatable();
  /// Keeps the option out of files of options.
  Option& onCommandLineOnly();
  /// Takes several values out of one text, such as "2,2,3".
  Option& separatedBy(char separator);

 private:
  CLI::Option* m_option;
  CommandFiles* m_files;
};

/// The options of one command. Values are written where the option says once the command line is
/// parsed; they outlive the parsing.
class Options {
 public:
  Options(CLI::App* command, std::shared_ptr<CommandFiles> files)
      : m_command(command), m_files(std::move(files)) {}

  /// An option with a value, or an argument by its place when the name has no dashes. The types are
  /// those that are instantiated in the .cpp file.
  template <typename Value>
  Option add(const std::string& name, Value& value, const std::string& help);
  /// An option that is there or not.
  Option addFlag(const std::string& name, bool& flag, const std::string& help);
  /// An option whose text `take` understands, or refuses by false: the user is then told what is
  /// `expected`.
  Option addParsed(const std::string& name, std::function<bool(const std::string&)> take,
                   const std::string& expected, const std::string& help);
  /// Options of which the user gives at least and at most so many.
  Options addChoice(const std::string& name, std::size_t least, std::size_t most);
  /// The same options, of which the help lists those that are added from here under a heading.
  Options under(const char* heading) const;

  /// Whether the user chose this command.
  bool wereChosen() const;
  const CLI::App& parser() const { return *m_command; }
  CLI::App& parser() { return *m_command; }
  /// What the user names to be read and to be written.
  std::vector<std::string> filesRead() const;
  std::vector<std::string> filesWritten() const;
  /// All that can be given, but what has no name and the help.
  std::vector<OptionKind> kinds() const;

 private:
  friend class CommandLine;
  Option listed(CLI::Option* option);

  CLI::App* m_command;
  std::shared_ptr<CommandFiles> m_files;
  const char* m_heading = nullptr;
};

}  // namespace grouptracker
