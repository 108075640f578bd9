#pragma once

#include <fmt/format.h>

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace grouptracker {

/// Building one line of a JSON Lines file in a buffer that is kept from line to line.
namespace json_line {

using Line = fmt::memory_buffer;

/// Apart from its callers, since each source that formats into a buffer by itself would compile
/// most of the library anew.
void appendArguments(Line& line, fmt::string_view text, fmt::format_args arguments);

template <typename... Args>
void append(Line& line, fmt::format_string<Args...> text, Args&&... args) {
  appendArguments(line, text, fmt::make_format_args(args...));
}

/// The shortest text that reads as exactly this number in double precision; null unless finite.
void appendNumber(Line& line, double number);
template <std::integral Whole>
requires(!std::same_as<Whole, bool> && !std::same_as<Whole, char>) void appendNumber(Line& line,
                                                                                     Whole number) {
  const fmt::format_int text(number);
  line.append(std::string_view(text.data(), text.size()));
}

/// The same of a number that is rounded to so many decimals, six at most, halves away from zero.
void appendRounded(Line& line, double number, unsigned decimals);

/// The same as `jsonText()`.
void appendText(Line& line, std::string_view text);

/// Texts as they are and numbers as JSON has them, one behind the other. For what is written many
/// times a frame: `append()` takes longer to read its text than to write the numbers.
template <typename... Parts>
void appendParts(Line& line, const Parts&... parts) {
  const auto appendPart = [&line](const auto& part) {
    if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(part)>>) {
      appendNumber(line, part);
    } else {
      line.append(std::string_view(part));
    }
  };
  (appendPart(parts), ...);
}

/// A JSON array of the items, each written by `write`.
template <typename Items, typename Write>
void appendArray(Line& line, const Items& items, const Write& write) {
  const char* separator = "";
  line.push_back('[');
  for (const auto& item : items) {
    line.append(std::string_view(separator));
    write(item);
    separator = ", ";
  }
  line.push_back(']');
}

/// A JSON array of numbers.
template <typename Numbers>
void appendNumbers(Line& line, const Numbers& numbers) {
  appendArray(line, numbers, [&line](auto number) { appendNumber(line, number); });
}

/// The items one behind the other. Much quicker to compile than `fmt::join`.
template <typename Items>
std::string joined(const Items& items, std::string_view separator) {
  std::string text;
  bool isFirst = true;
  for (const auto& item : items) {
    text += isFirst ? std::string_view() : separator;
    text += fmt::format("{}", item);
    isFirst = false;
  }
  return text;
}

}  // namespace json_line

/// A quoted string; the text is UTF-8, bytes that are not become the replacement character.
std::string jsonText(std::string_view text);
/// The text in quotation marks, of which those within it are doubled: a field of CSV, a name of
/// SQL.
std::string doublyQuoted(std::string_view text);
/// The shortest text that reads as exactly this number in double precision; null unless finite.
std::string jsonNumber(double number);

}  // namespace grouptracker
