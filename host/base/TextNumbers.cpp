#include "host/base/TextNumbers.h"

#include "host/base/InputError.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string>
#include <system_error>

namespace grouptracker {

namespace {

constexpr std::string_view blanks = " \t\v\f\r";
constexpr std::size_t longestQuote = 40;  // characters of a bad piece shown to the user

std::string_view trimmed(std::string_view piece) {
  const std::size_t begin = piece.find_first_not_of(blanks);
  return begin == std::string_view::npos
             ? std::string_view()
             : piece.substr(begin, piece.find_last_not_of(blanks) + 1 - begin);
}

}  // namespace

double parseNumber(std::string_view piece) {
  // from_chars() knows no plus sign; a second sign behind it must not slip through.
  const std::string_view digits =
      piece.starts_with('+') && !piece.starts_with("+-") ? piece.substr(1) : piece;
  double number = 0.0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(number)) {
    throw ValueProblem("a number is expected instead of \"" +
                       std::string(piece.substr(0, longestQuote)) + "\"");
  }
  return number;
}

void parseCommaNumbers(std::string_view line, std::vector<double>& numbers) {
  numbers.clear();
  for (std::size_t begin = 0; begin <= line.size();) {
    const std::size_t end = std::min(line.find(',', begin), line.size());
    numbers.push_back(parseNumber(trimmed(line.substr(begin, end - begin))));
    begin = end + 1;
  }
}

std::int64_t wholeNumber(double value, double largest, const char* name) {
  if (value != std::floor(value) || value < 0.0 || value > largest) {
    throw ValueProblem(std::string("the ") + name + " must be a whole number from 0 to " +
                       std::to_string(static_cast<std::int64_t>(largest)));
  }
  return static_cast<std::int64_t>(value);
}

void parseNumbers(std::string_view line, std::vector<double>& numbers) {
  numbers.clear();
  std::size_t begin = line.find_first_not_of(blanks);
  while (begin != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(blanks, begin), line.size());
    numbers.push_back(parseNumber(line.substr(begin, end - begin)));
    begin = line.find_first_not_of(blanks, end);
  }
}

}  // namespace grouptracker
