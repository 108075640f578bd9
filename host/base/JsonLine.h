#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>
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

/// A JSON array of whole numbers.
template <typename Numbers>
void appendNumbers(Line& line, const Numbers& numbers) {
  appendArray(line, numbers, [&line](auto number) { append(line, "{}", number); });
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
