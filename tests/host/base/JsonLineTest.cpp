#include "host/base/JsonLine.h"
#include "host/base/RandomNumbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace grouptracker {

namespace {

template <typename Append>
std::string textOf(const Append& append) {
  json_line::Line line;
  append(line);
  return fmt::to_string(line);
}

std::string rounded(double number, unsigned decimals) {
  return textOf([&](auto& line) { json_line::appendRounded(line, number, decimals); });
}

/// The same by rounding and writing in full precision.
std::string plainlyRounded(double number, unsigned decimals) {
  const double parts = std::pow(10.0, decimals);
  const double whole = std::round(number * parts);
  return jsonNumber(whole == 0.0 ? 0.0 : whole / parts);
}

TEST(JsonLine, RoundedNumbersAreTheShortestTextsOfTheirDoubles) {
  EXPECT_EQ(rounded(-0.33335, 4), "-0.3334");
  EXPECT_EQ(rounded(-0.00004, 4), "0");
  EXPECT_EQ(rounded(62.0, 6), "62");
  EXPECT_EQ(rounded(-120.0, 0), "-120");
  EXPECT_EQ(rounded(0.0499, 3), "0.05");
  EXPECT_EQ(rounded(1e-6, 6), "1e-06");
  EXPECT_EQ(rounded(std::nan(""), 4), "null");
  EXPECT_EQ(rounded(-std::numeric_limits<double>::infinity(), 4), "null");
  RandomNumbers random(4);
  for (int i = 0; i < 20000; ++i) {
    const double number = std::pow(10.0, random.uniform(-8.0, 22.0)) * random.uniform(-1.0, 1.0);
    const auto decimals = static_cast<unsigned>(i % 7);
    ASSERT_EQ(rounded(number, decimals), plainlyRounded(number, decimals)) << number;
    const double decimal = std::round(number * 1e3) / 1e3;
    ASSERT_EQ(rounded(decimal, decimals), plainlyRounded(decimal, decimals)) << decimal;
  }
}

TEST(JsonLine, PartsAreTextsAndNumbers) {
  const std::string key = "id";
  EXPECT_EQ(textOf([&](auto& line) {
              json_line::appendParts(line, "{", key, ": ", 4294967295U, ", ",
                                     std::numeric_limits<std::int64_t>::min(), ", ", 0.1, ", ",
                                     0.1F, ", ", std::nan(""), 2);
            }),
            "{id: 4294967295, -9223372036854775808, 0.1, 0.10000000149011612, null2");
}

TEST(JsonLine, TextsInLinesAreQuotedAsAlone) {
  for (const std::string text : {"", "plain ~", "a \"b\" \\", "tab\t", "\u00e9", "\xff damaged"}) {
    EXPECT_EQ(textOf([&](auto& line) { json_line::appendText(line, text); }), jsonText(text));
  }
}

}  // namespace

}  // namespace grouptracker
