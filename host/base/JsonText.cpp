#include "host/base/JsonText.h"

#include "host/base/JsonLine.h"

#include <fmt/format.h>

#include <cmath>
#include <iterator>

namespace grouptracker {

void json_line::appendArguments(Line& line, fmt::string_view text, fmt::format_args arguments) {
  fmt::vformat_to(std::back_inserter(line), text, arguments);
}

std::string jsonText(std::string_view text) {
  // Through QString, so that damaged UTF-8 cannot leave the file unreadable.
  return jsonText(QString::fromUtf8(text.data(), static_cast<int>(text.size())));
}

std::string jsonText(const QString& text) {
  constexpr unsigned char firstPrintable = 0x20;
  std::string quoted = "\"";
  for (const char c : text.toUtf8()) {
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

std::string jsonText(const QVariant& value) {
  switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::Bool:
      return value.toBool() ? "true" : "false";
    case QMetaType::QString:
      return jsonText(value.toString());
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
      return std::to_string(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
      return std::to_string(value.toULongLong());
    case QMetaType::Float:
    case QMetaType::Double:
      return jsonNumber(value.toDouble());
    default:
      return "null";
  }
}

std::string jsonNumber(double number) {
  return std::isfinite(number) ? fmt::format("{}", number) : "null";
}

}  // namespace grouptracker
