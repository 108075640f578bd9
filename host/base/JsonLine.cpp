#include "host/base/JsonLine.h"

#include <QString>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace grouptracker {

void json_line::appendArguments(Line& line, fmt::string_view text, fmt::format_args arguments) {
  fmt::vformat_to(std::back_inserter(line), text, arguments);
}

namespace {

bool isAscii(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

std::string inQuotes(std::string_view text) {
  constexpr unsigned char firstPrintable = 0x20;
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

std::string jsonText(std::string_view text) {
  const bool isPlain = std::all_of(text.begin(), text.end(), isAscii);
  return inQuotes(isPlain ? std::string(text) : withoutDamage(text));
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
  return std::isfinite(number) ? fmt::format("{}", number) : "null";
}

}  // namespace grouptracker
