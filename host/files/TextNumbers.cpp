#include "TextNumbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string>
#include <system_error>

namespace {

constexpr std::string_view blanks = " \t\v\f\r";
constexpr std::size_t longestQuote = 40;  // characters of a bad piece shown to the user

double parseNumber(std::string_view piece) {
  // from_chars() knows no plus sign; a second sign behind it must not slip through.
  const std::string_view digits =
      piece.starts_with('+') && !piece.starts_with("+-") ? piece.substr(1) : piece;
  double number = 0.0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(number)) {
    throw std::invalid_argument("a number is expected instead of \"" +
                                std::string(piece.substr(0, longestQuote)) + "\"");
  }
  return number;
}

}  // namespace

void parseNumbers(std::string_view line, std::vector<double>& numbers) {
  numbers.clear();
  std::size_t begin = line.find_first_not_of(blanks);
  while (begin != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(blanks, begin), line.size());
    numbers.push_back(parseNumber(line.substr(begin, end - begin)));
    begin = line.find_first_not_of(blanks, end);
  }
}
