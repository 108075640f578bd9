#pragma once

#include "host/base/InputError.h"
#include "host/base/PersonNames.h"

#include <simdjson.h>

#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace grouptracker {

/// Values out of parsed JSON with the checks that every reader wants. Each function throws
/// `ValueProblem` that says in a few words what is wrong with the value called `name`.
namespace json {

using Value = simdjson::dom::element;

inline ValueProblem problem(const std::string& text) {
  return ValueProblem(text);
}

/// The document of a text; a text with spare capacity is parsed in place.
inline Value parse(simdjson::dom::parser& parser, const std::string& text) {
  Value value;
  if (const auto error = parser.parse(text).get(value)) {
    throw problem(error == simdjson::NUMBER_ERROR  ? "not valid JSON: a number that does not fit"
                  : error == simdjson::DEPTH_ERROR ? "the JSON is nested too deeply"
                                                   : "not valid JSON");
  }
  return value;
}

inline simdjson::dom::object asObject(Value value, const char* name) {
  simdjson::dom::object object;
  if (value.get(object) != simdjson::SUCCESS) {
    throw problem(std::string(name) + " must be an object");
  }
  return object;
}

/// Calls `take(key, value)` for each field of an object.
template <typename Take>
void eachField(Value value, const char* name, const Take& take) {
  for (const auto field : asObject(value, name)) {
    take(field.key, field.value);
  }
}

/// For a field that nobody asks for.
inline void passOver(const Value& /*value*/) {}

inline std::string asText(Value value, const char* name) {
  std::string_view text;
  if (value.get(text) != simdjson::SUCCESS) {
    throw problem(std::string(name) + " must be a string");
  }
  return std::string(text);
}

/// An integer within the range of its type.
template <std::integral Number>
Number as(Value value, const char* name) {
  std::int64_t number = 0;
  if (value.get(number) != simdjson::SUCCESS || !std::in_range<Number>(number)) {
    throw problem(std::string(name) + " must be an integer from " +
                  std::to_string(std::numeric_limits<Number>::min()) + " to " +
                  std::to_string(std::numeric_limits<Number>::max()));
  }
  return static_cast<Number>(number);
}

/// A finite number that stays finite in the precision of its type.
template <std::floating_point Number>
Number as(Value value, const char* name) {
  double number = 0.0;
  if (value.get(number) != simdjson::SUCCESS) {
    throw problem(std::string(name) + " must be a number");
  }
  const auto rounded = static_cast<Number>(number);
  if (!std::isfinite(rounded)) {
    throw problem(std::string(name) + " is a number that does not fit");
  }
  return rounded;
}

/// The number that stands for a person, whose name may be a whole number or a text.
inline std::uint32_t asPerson(Value value, const char* name) {
  std::string_view text;
  if (value.get(text) == simdjson::SUCCESS) {
    return PersonNames::ofProgram().numberOf(text);
  }
  std::int64_t number = 0;
  if (value.get(number) != simdjson::SUCCESS) {
    throw problem(std::string(name) + " must be a whole number or a text");
  }
  return PersonNames::ofProgram().numberOf(number);
}

template <typename Number, std::size_t count>
std::array<Number, count> asNumbers(Value value, const char* name) {
  simdjson::dom::array values;
  if (value.get(values) != simdjson::SUCCESS || values.size() != count) {
    throw problem(std::string(name) + " must be an array of " + std::to_string(count) +
                  (std::is_integral_v<Number> ? " integers" : " numbers"));
  }
  std::array<Number, count> numbers{};
  std::size_t i = 0;
  for (const Value number : values) {
    numbers[i++] = as<Number>(number, name);
  }
  return numbers;
}

/// `read(value, item)` replaces an item that keeps its buffers, `read(value)` makes a new one.
template <typename JsonValue, typename Item, typename Read>
void readItem(const JsonValue& value, const Read& read, Item& item) {
  if constexpr (std::invocable<Read, JsonValue, Item&>) {
    read(value, item);
  } else {
    item = read(value);
  }
}

/// Replaces `items` by those of an array, each read as `readItem` does; a problem of an item gets
/// the item's index in front.
template <typename Item, typename Read>
void readArray(Value value, const char* name, const Read& read, std::vector<Item>& items) {
  simdjson::dom::array values;
  if (value.get(values) != simdjson::SUCCESS) {
    throw problem(std::string(name) + " must be an array");
  }
  items.resize(values.size());
  std::size_t i = 0;
  for (const Value item : values) {
    try {
      readItem(item, read, items[i]);
    } catch (const ValueProblem& inner) {
      throw problem(std::string(name) + "[" + std::to_string(i) + "]: " + inner.what());
    }
    ++i;
  }
}

/// The value of a key that must be there.
template <typename Member>
Member required(std::optional<Member>& member, const char* key) {
  if (!member) {
    throw problem("\"" + std::string(key) + "\" is missing");
  }
  return *std::move(member);
}

}  // namespace json

}  // namespace grouptracker
