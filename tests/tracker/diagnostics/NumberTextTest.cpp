#include "tracker/diagnostics/NumberText.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <string_view>

namespace {

std::string standard(double value, std::chars_format format) {
  std::array<char, NumberText::fixedSize> text;
  constexpr int precision = 6;
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, format, precision).ptr;
  return {text.data(), end};
}

/// Both ways of writing a value and its negative against those of the standard library.
void expectStandard(double magnitude) {
  std::array<char, NumberText::fixedSize> text;
  for (const double value : {magnitude, -magnitude}) {
    const std::string_view fixed(text.data(), NumberText::writeFixed(text.data(), value));
    ASSERT_EQ(fixed, standard(value, std::chars_format::fixed)) << std::hexfloat << value;
    char* const end = NumberText::writeGeneral(text.data(), value);
    const std::string_view general(text.data(), end);
    ASSERT_EQ(general, standard(value, std::chars_format::general)) << std::hexfloat << value;
    ASSERT_LE(general.size(), NumberText::generalSize);
  }
}

/// A value and those right beside it.
void expectStandardAround(double value) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  expectStandard(std::nextafter(value, 0.0));
  expectStandard(value);
  expectStandard(std::nextafter(value, infinity));
}

TEST(NumberText, RoundsTiesToEven) {
  // Halves of a last place are dyadic: odd multiples of 2^-7 end with a 5 in the seventh place.
  for (int odd = 1; odd < 20000; odd += 2) {
    expectStandardAround(std::ldexp(odd, -7));
    expectStandardAround(std::ldexp(odd, -8));
  }
  // Those of six digits lie between the integers and further down.
  for (int number = 100000; number < 101000; ++number) {
    expectStandardAround(number + 0.5);
    expectStandardAround(10 * number + 5);
    expectStandardAround(number / 8.0);
  }
}

TEST(NumberText, KnowsPowersOfTenAndOfTwo) {
  for (int exponent = -330; exponent <= 20; ++exponent) {
    expectStandardAround(std::pow(10.0, exponent));
    expectStandardAround(999999.5 * std::pow(10.0, exponent - 6));
  }
  for (int exponent = -1074; exponent <= 60; ++exponent) {
    expectStandardAround(std::ldexp(1.0, exponent));
  }
  expectStandardAround(4e12);
  expectStandard(std::numeric_limits<double>::max());
  expectStandard(std::numeric_limits<double>::infinity());
}

TEST(NumberText, KnowsDenormalsAndZero) {
  expectStandard(0.0);
  for (std::uint64_t bits = 1; bits < (std::uint64_t{1} << 52); bits = 3 * bits + 1) {
    expectStandard(std::bit_cast<double>(bits));
  }
}

TEST(NumberText, WritesAMillionValuesAsTheStandardDoes) {
  std::mt19937_64 random(1);
  constexpr int count = 500000;  // each with both signs
  constexpr int exponents = 88;  // on either side of what is written without the standard's help
  for (int i = 0; i < count; ++i) {
    expectStandard(std::ldexp(static_cast<double>(random() >> 11), i % exponents - 96));
  }
}

TEST(NumberText, WritesIds) {
  std::array<char, NumberText::intSize> text;
  for (const int id :
       {0, -1, 42, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    char* const end = NumberText::writeInt(text.data(), id);
    EXPECT_EQ(std::string_view(text.data(), end), std::to_string(id));
  }
}

}  // namespace
