#include "host/commands/Options.h"

#include "host/batch/Recording.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>
#include <system_error>
#include <type_traits>
#include <utility>

namespace grouptracker {

namespace {

/// A check of numbers that lets neither infinity nor what is no number pass. `expected` says which
/// are good.
template <typename IsGood>
CLI::Validator numberCheck(const std::string& expected, const IsGood& isGood) {
  const auto check = [=](const std::string& text) {
    double number = 0.0;
    const bool isNumber = CLI::detail::lexical_cast(text, number) && std::isfinite(number);
    return isNumber && isGood(number) ? std::string() : text + " is not " + expected;
  };
  return CLI::Validator(check, std::string());
}

/// As short as it can be said, without digits that nobody asked for.
std::string shortest(double number) {
  std::ostringstream text;
  text << std::setprecision(10) << number;
  return text.str();
}

CLI::Validator rangeCheck(double lowest, double highest) {
  return numberCheck("a number from " + shortest(lowest) + " to " + shortest(highest),
                     [=](double number) { return number >= lowest && number <= highest; });
}

template <typename Value>
constexpr bool isReal =
    std::is_same_v<Value, double> || std::is_same_v<Value, std::optional<double>>;

/// The number itself, of which the option may take none or several.
template <typename Value>
struct Single {
  using Type = Value;
};
template <typename Value>
struct Single<std::optional<Value>> {
  using Type = Value;
};
template <typename Value>
struct Single<std::vector<Value>> {
  using Type = Value;
};

/// The parser itself would take the nearest number for one that does not fit.
template <typename Whole>
CLI::Validator wholeCheck() {
  const auto check = [](const std::string& text) {
    const char* const end = text.data() + text.size();
    Whole number = 0;
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::result_out_of_range) {
      return fmt::format("{} is not from {} to {}", text, std::numeric_limits<Whole>::min(),
                         std::numeric_limits<Whole>::max());
    }
    return error == std::errc() && rest == end
               ? std::string()
               : fmt::format("{} is not a whole number{}", text,
                             std::is_unsigned_v<Whole> ? " of 0 or more" : "");
  };
  return CLI::Validator(check, std::string());
}

/// What stands behind the last bar of "FILE|none"; empty without one.
std::string lastChoice(const std::string& typeName) {
  const auto bar = typeName.rfind('|');
  return bar == std::string::npos ? std::string() : typeName.substr(bar + 1);
}

/// What the user gave to an option, without the word that stands for nothing.
std::vector<std::string> namesIn(const CLI::Option& option) {
  const std::string nothing = lastChoice(option.get_type_name());
  std::vector<std::string> names = option.results();
  std::erase_if(names, [&](const std::string& name) { return name.empty() || name == nothing; });
  return names;
}

std::vector<std::string> allOf(const std::vector<CommandFiles::Named>& options) {
  std::vector<std::string> all;
  for (const auto& option : options) {
    const std::vector<std::string> some = option.files();
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

bool isAmong(const std::vector<CommandFiles::Named>& options, const std::string& name) {
  return std::any_of(options.begin(), options.end(), [&name](const auto& option) {
    return std::find(option.options.begin(), option.options.end(), name) != option.options.end();
  });
}

}  // namespace

Option& Option::required() {
  m_option->required();
  return *this;
}

Option& Option::typeName(const char* name) {
  m_option->type_name(name);
  return *this;
}

Option& Option::reads(const char* name) {
  m_files->read.push_back(
      {m_option->get_lnames(), [option = m_option] { return namesIn(*option); }});
  return typeName(name);
}

Option& Option::readsBoth(const char* name) {
  const auto files = [option = m_option] {
    std::vector<std::string> both;
    for (const std::string& names : namesIn(*option)) {
      const auto colon = std::min(names.rfind(':'), names.size());
      both.push_back(names.substr(0, colon));
      both.push_back(names.substr(std::min(colon + 1, names.size())));
    }
    return both;
  };
  m_files->read.push_back({{}, files});
  return typeName(name);
}

Option& Option::writes(const char* name) {
  m_files->written.push_back(
      {m_option->get_lnames(), [option = m_option] { return namesIn(*option); }});
  return typeName(name);
}

Option& Option::showDefault() {
  m_option->capture_default_str();
  return *this;
}

Option& Option::within(double lowest, double highest) {
  m_option->check(rangeCheck(lowest, highest));
  return *this;
}

Option& Option::within(int lowest, int highest) {
  m_option->check(rangeCheck(lowest, highest));
  return *this;
}

Option& Option::positive() {
  m_option->check(numberCheck("a number above 0", [](double number) { return number > 0.0; }));
  return *this;
}

Option& Option::notNegative() {
  m_option->check(
      numberCheck("a number of 0 or more", [](double number) { return number >= 0.0; }));
  return *this;
}

Option& Option::oneOf(const std::vector<std::string>& words) {
  // As the type's name, where the help of the check would say it again.
  m_option->type_name(CLI::detail::join(words, "|"));
  m_option->check(CLI::IsMember(words).description(""));
  return *this;
}

Option& Option::count(int values) {
  m_option->expected(values);
  return *this;
}

Option& Option::onCommandLineOnly() {
  m_option->configurable(false);
  return *this;
}

Option& Option::repeatable() {
  m_option->allow_extra_args(false);
  return *this;
}

Option& Option::separatedBy(char separator) {
  m_option->delimiter(separator);
  return *this;
}

template <typename Value>
Option Options::add(const std::string& name, Value& value, const std::string& help) {
  CLI::Option* const option = m_command->add_option(name, value, help);
  if constexpr (isReal<Value>) {
    option->check(numberCheck("a finite number", [](double) { return true; }));
  } else if constexpr (std::is_integral_v<typename Single<Value>::Type>) {
    option->check(wholeCheck<typename Single<Value>::Type>());
  }
  return listed(option);
}

template Option Options::add(const std::string&, std::string&, const std::string&);
template Option Options::add(const std::string&, std::vector<std::string>&, const std::string&);
template Option Options::add(const std::string&, int&, const std::string&);
template Option Options::add(const std::string&, std::optional<int>&, const std::string&);
template Option Options::add(const std::string&, std::vector<int>&, const std::string&);
template Option Options::add(const std::string&, std::size_t&, const std::string&);
template Option Options::add(const std::string&, std::optional<std::size_t>&, const std::string&);
template Option Options::add(const std::string&, double&, const std::string&);
template Option Options::add(const std::string&, std::optional<double>&, const std::string&);

Option Options::addFlag(const std::string& name, bool& flag, const std::string& help) {
  return listed(m_command->add_flag(name, flag, help));
}

Option Options::addParsed(const std::string& name, std::function<bool(const std::string&)> take,
                          const std::string& expected, const std::string& help) {
  const auto parse = [name, take = std::move(take), expected](const std::string& text) {
    if (!take(text)) {
      throw CLI::ValidationError(name, expected);
    }
  };
  return listed(m_command->add_option_function<std::string>(name, parse, help));
}

Options Options::addChoice(const std::string& name, std::size_t least, std::size_t most) {
  CLI::App* const choice = m_command->add_option_group(name);
  choice->require_option(least, most);
  return {choice, m_files};
}

Options Options::under(const char* heading) const {
  Options options = *this;
  options.m_heading = heading;
  return options;
}

Option Options::listed(CLI::Option* option) {
  if (m_heading != nullptr) {
    option->group(m_heading);
  }
  return {option, *m_files};
}

bool Options::wereChosen() const {
  return m_command->parsed();
}

std::vector<std::string> Options::filesRead() const {
  return allOf(m_files->read);
}

std::vector<std::string> Options::filesWritten() const {
  return allOf(m_files->written);
}

std::vector<OptionKind> Options::kinds() const {
  std::vector<OptionKind> kinds;
  for (const CLI::Option* const option : m_command->get_options()) {
    const bool isFlag = option->get_items_expected_max() == 0;
    const std::string type = option->get_type_name();
    for (const std::string& name : option->get_lnames()) {
      const bool reads = isAmong(m_files->read, name);
      const bool writes = isAmong(m_files->written, name);
      kinds.push_back({name, isFlag, reads, writes, reads || writes ? lastChoice(type) : ""});
    }
  }
  std::erase_if(kinds, [](const OptionKind& kind) { return kind.name == "help"; });
  return kinds;
}

}  // namespace grouptracker
