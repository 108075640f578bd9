#pragma once

#include "host/base/JsonAccess.h"

#include <simdjson.h>

#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

/// The functions of `JsonAccess.h` for values that are read while the text is gone through, which
/// takes half the time of making a document first. For those who read everything: what nobody asks
/// for is not checked, so each function throws `Unusual` for whatever a document would have to
/// decide about, and the text is then to be read as a document, which gives the value or the
/// reason.
namespace json {

using PassingValue = simdjson::ondemand::value;

struct Unusual : ValueProblem {
  Unusual() : ValueProblem("unusual") {}
};

/// What a result holds.
template <typename Item>
Item usual(simdjson::simdjson_result<Item> result) {
  if (result.error() != simdjson::SUCCESS) {
    throw Unusual();
  }
  return std::move(result).value_unsafe();
}

/// Calls `take(key, value)` for each field of an object.
template <typename Object, typename Take>
void eachPassingField(Object object, const Take& take) {
  for (auto passing : object) {
    auto field = usual(passing);
    take(field.key(), field.value());
  }
}

template <typename Take>
void eachField(PassingValue value, const char* /*name*/, const Take& take) {
  eachPassingField(usual(value.get_object()), take);
}

/// The same for the whole text, behind which there must be nothing.
template <typename Take>
void eachField(simdjson::ondemand::document& document, const Take& take) {
  eachPassingField(usual(document.get_object()), take);
  if (document.current_location().error() != simdjson::OUT_OF_BOUNDS) {
    throw Unusual();
  }
}

inline void passOver(const PassingValue& /*value*/) {
  throw Unusual();
}

inline std::string asText(PassingValue value, const char* /*name*/) {
  return std::string(usual(value.get_string()));
}

template <std::integral Number>
Number as(PassingValue value, const char* /*name*/) {
  const std::int64_t number = usual(value.get_int64());
  if (!std::in_range<Number>(number)) {
    throw Unusual();
  }
  return static_cast<Number>(number);
}

/// A document knows whole numbers from others: of "-0" it makes 0, and it refuses large ones.
template <std::floating_point Number>
Number as(PassingValue value, const char* /*name*/) {
  constexpr double alwaysKnown = 1e18;  // below the largest whole number of a document
  const double number = usual(value.get_double());
  if ((number == 0.0 && std::signbit(number)) || !(std::abs(number) < alwaysKnown)) {
    throw Unusual();
  }
  return static_cast<Number>(number);
}

template <typename Number, std::size_t count>
std::array<Number, count> asNumbers(PassingValue value, const char* name) {
  std::array<Number, count> numbers{};
  std::size_t i = 0;
  for (auto item : usual(value.get_array())) {
    if (i == count) {
      throw Unusual();
    }
    numbers[i++] = as<Number>(usual(item), name);
  }
  if (i != count) {
    throw Unusual();
  }
  return numbers;
}

template <typename Item, typename Read>
void readArray(PassingValue value, const char* /*name*/, const Read& read,
               std::vector<Item>& items) {
  std::size_t count = 0;
  for (auto item : usual(value.get_array())) {
    if (count == items.size()) {
      items.emplace_back();
    }
    readItem(usual(item), read, items[count++]);
  }
  items.resize(count);
}

}  // namespace json

}  // namespace grouptracker
