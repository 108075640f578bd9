#pragma once

#include <fmt/format.h>

#include <iterator>
#include <string_view>
#include <utility>

namespace grouptracker {

/// Building one line of a JSON Lines file in a buffer that is kept from line to line.
namespace json_line {

using Line = fmt::memory_buffer;

template <typename... Args>
void append(Line& line, fmt::format_string<Args...> text, Args&&... args) {
  fmt::format_to(std::back_inserter(line), text, std::forward<Args>(args)...);
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

}  // namespace json_line

}  // namespace grouptracker
