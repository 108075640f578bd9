#include "tracker/diagnostics/NumberText.h"

#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

namespace {

__extension__ using Wide = unsigned __int128;

constexpr int mantissaBits = 52;
constexpr int exponentBias = 1075;  // of a double's mantissa read as an integer
constexpr std::uint64_t million = 1'000'000;
constexpr std::uint64_t thousandMillions = 1'000'000'000;
constexpr double largestExact = 4e12;  // up to here a million times the value fits 64 bits
constexpr int widestShift = 127;

// A positive value below 2^53 times a factor, rounded half to even: exactly what printf rounds.
std::uint64_t scaledAndRounded(double value, std::uint64_t factor) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const int exponent = static_cast<int>(bits >> mantissaBits);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << mantissaBits) - 1);
  const std::uint64_t mantissa =
      exponent == 0 ? fraction : fraction | (std::uint64_t{1} << mantissaBits);
  const int shift = exponentBias - (exponent == 0 ? 1 : exponent);
  const Wide scaled = static_cast<Wide>(mantissa) * factor;
  if (shift <= 0) {
    return static_cast<std::uint64_t>(scaled << -shift);
  }
  if (shift > widestShift) {
    return 0;
  }
  const auto whole = static_cast<std::uint64_t>(scaled >> shift);
  const Wide rest = scaled & ((Wide{1} << shift) - 1);
  const Wide half = Wide{1} << (shift - 1);
  const bool up = rest > half || (rest == half && (whole & 1) != 0);
  return whole + (up ? 1 : 0);
}

char* writeUnsigned(char* out, std::uint64_t value) {
  constexpr std::size_t most = 20;
  return std::to_chars(out, out + most, value).ptr;
}

// Two digits at a time.
char* writeSixDigits(char* out, std::uint32_t value) {
  constexpr std::uint32_t hundred = 100;
  static constexpr char pairs[] =
      "00010203040506070809101112131415161718192021222324252627282930313233343536373839404142434445"
      "46"
      "47484950515253545556575859606162636465666768697071727374757677787980818283848586878889909192"
      "93"
      "949596979899";
  const std::uint32_t front = value / hundred;
  std::memcpy(out, pairs + 2 * (front / hundred), 2);
  std::memcpy(out + 2, pairs + 2 * (front % hundred), 2);
  std::memcpy(out + 4, pairs + 2 * (value % hundred), 2);
  return out + 6;
}

// The shape of "%g" without an exponent: six significant digits, no zeros at the end.
char* writeSignificant(char* out, std::uint64_t digits, int decimals) {
  while (decimals > 0 && digits % 10 == 0) {
    digits /= 10;
    --decimals;
  }
  std::uint64_t unit = 1;
  for (int i = 0; i < decimals; ++i) {
    unit *= 10;
  }
  out = writeUnsigned(out, digits / unit);
  if (decimals > 0) {
    *out++ = '.';
    std::uint64_t rest = digits % unit;
    for (char* place = out + decimals; place != out; rest /= 10) {
      *--place = static_cast<char>('0' + rest % 10);
    }
    out += decimals;
  }
  return out;
}

}  // namespace

char* NumberText::writeGeneral(char* out, double value) {
  constexpr double smallest = 1e-4;  // below and from the largest on there is an exponent
  constexpr double largest = 999999.0;
  const double magnitude = value < 0 ? -value : value;
  if (value == 0 || !(magnitude >= smallest && magnitude < largest)) {
    return std::to_chars(out, out + generalSize, value, std::chars_format::general, 6).ptr;
  }
  // The number of decimals with which six digits are significant.
  int decimals = 9;
  std::uint64_t factor = thousandMillions;
  for (double limit = 1e-3; magnitude >= limit && decimals > 0; limit *= 10) {
    --decimals;
    factor /= 10;
  }
  std::uint64_t digits = scaledAndRounded(magnitude, factor);
  if (digits >= million) {
    // An estimate that was one too high, or a carry into a seventh digit.
    --decimals;
    digits = scaledAndRounded(magnitude, factor / 10);
  }
  if (value < 0) {
    *out++ = '-';
  }
  return writeSignificant(out, digits, decimals);
}

char* NumberText::writeInt(char* out, int value) {
  return std::to_chars(out, out + intSize, value).ptr;
}

char* NumberText::writeFixed(char* out, double value) {
  const bool isNegative = std::bit_cast<std::int64_t>(value) < 0;
  const double magnitude = isNegative ? -value : value;
  if (!(magnitude < largestExact)) {
    return std::to_chars(out, out + fixedSize, value, std::chars_format::fixed, 6).ptr;
  }
  if (isNegative) {
    *out++ = '-';
  }
  const std::uint64_t scaled = scaledAndRounded(magnitude, million);
  out = writeUnsigned(out, scaled / million);
  *out++ = '.';
  return writeSixDigits(out, static_cast<std::uint32_t>(scaled % million));
}
