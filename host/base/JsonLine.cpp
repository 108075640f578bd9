#include "host/base/JsonLine.h"

#include <QString>
#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>

namespace grouptracker {

void json_line::appendArguments(Line& line, fmt::string_view text, fmt::format_args arguments) {
  fmt::vformat_to(std::back_inserter(line), text, arguments);
}

namespace {

constexpr unsigned char firstPrintable = 0x20;
constexpr std::array powersOfTen{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};

bool isAscii(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

/// Whether a character stands for itself in quotes.
bool isPlain(char c) {
  return isAscii(c) && static_cast<unsigned char>(c) >= firstPrintable && c != '"' && c != '\\';
}

/// A number that is written as `digits` with a point before the last `decimals` of them, without
/// zeros at the end.
void appendDecimal(json_line::Line& line, std::uint64_t digits, std::size_t decimals) {
  while (decimals > 0 && digits % 10 == 0) {
    digits /= 10;
    --decimals;
  }
  const fmt::format_int formatted(digits);
  const std::string_view text(formatted.data(), formatted.size());
  const std::size_t ahead = text.size() - std::min(text.size(), decimals);
  line.append(ahead > 0 ? text.substr(0, ahead) : std::string_view("0"));
  if (decimals > 0) {
    line.push_back('.');
    for (std::size_t place = text.size(); place < decimals; ++place) {
      line.push_back('0');
    }
    line.append(text.substr(ahead));
  }
}

std::string inQuotes(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (static_cast<unsigned char>(c) < firstPrintable) {
      quoted += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    } else {
      quoted += c;
    }
  }
  return quoted + '"';
}

/// Through QString, so that damaged UTF-8 cannot leave a file unreadable.
std::string withoutDamage(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<int>(text.size())).toStdString();
}

}  // namespace

void json_line::appendNumber(Line& line, double number) {
  if (!std::isfinite(number)) {
    line.append(std::string_view("null"));
    return;
  }
  fmt::format_to(fmt::appender(line), FMT_COMPILE("{}"), number);
}

// Decimal numbers of up to 15 digits are all different in double precision: such a one is the
// shortest text of the double that is nearest to it.
void json_line::appendRounded(Line& line, double number, unsigned decimals) {
  constexpr double leastWithMoreDigits = 1e15;
  constexpr double leastWithoutExponent = 1e-4;
  const double parts = powersOfTen.at(decimals);
  const double whole = std::round(number * parts);
  const double rounded = whole / parts;
  const bool isPlainDecimal = std::abs(whole) < leastWithMoreDigits &&
                              (whole == 0.0 || std::abs(rounded) >= leastWithoutExponent);
  if (!isPlainDecimal) {
    appendNumber(line, rounded);
    return;
  }
  if (whole < 0.0) {
    line.push_back('-');
  }
  appendDecimal(line, static_cast<std::uint64_t>(std::abs(whole)), decimals);
}

void json_line::appendText(Line& line, std::string_view text) {
  if (!std::all_of(text.begin(), text.end(), isPlain)) {
    line.append(jsonText(text));
    return;
  }
  line.push_back('"');
  line.append(text);
  line.push_back('"');
}

std::string jsonText(std::string_view text) {
  const bool isUndamaged = std::all_of(text.begin(), text.end(), isAscii);
  return inQuotes(isUndamaged ? std::string(text) : withoutDamage(text));
}

std::string doublyQuoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c;
    quoted += c == '"' ? "\"" : "";
  }
  return quoted + '"';
}

std::string jsonNumber(double number) {
  json_line::Line text;
  json_line::appendNumber(text, number);
  return fmt::to_string(text);
}

}  // namespace grouptracker
