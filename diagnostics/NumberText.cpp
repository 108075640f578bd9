#include "NumberText.h"

#include <fmt/format.h>

#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

namespace {

__extension__ using Wide = unsigned __int128;

constexpr int mantissaBits = 52;
constexpr int exponentBias = 1075;  // of a double's mantissa read as an integer
constexpr std::uint64_t million = 1'000'000;
constexpr double largestExact = 4e12;  // up to here a million times the value fits 64 bits
constexpr int widestShift = 127;

// A million times a positive value, rounded half to even: exactly what six decimals show.
std::uint64_t millionths(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const int exponent = static_cast<int>(bits >> mantissaBits);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << mantissaBits) - 1);
  const std::uint64_t mantissa =
      exponent == 0 ? fraction : fraction | (std::uint64_t{1} << mantissaBits);
  const int shift = exponentBias - (exponent == 0 ? 1 : exponent);
  const Wide scaled = static_cast<Wide>(mantissa) * million;
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

}  // namespace

char* NumberText::writeInt(char* out, int value) {
  return std::to_chars(out, out + intSize, value).ptr;
}

char* NumberText::writeFixed(char* out, double value) {
  const bool isNegative = std::bit_cast<std::int64_t>(value) < 0;
  const double magnitude = isNegative ? -value : value;
  if (!(magnitude < largestExact)) {
    return fmt::format_to(out, "{:f}", value);
  }
  if (isNegative) {
    *out++ = '-';
  }
  const std::uint64_t scaled = millionths(magnitude);
  out = writeUnsigned(out, scaled / million);
  *out++ = '.';
  return writeSixDigits(out, static_cast<std::uint32_t>(scaled % million));
}
