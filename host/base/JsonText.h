#pragma once

#include <QString>
#include <QVariant>

#include <string>
#include <string_view>

namespace grouptracker {

/// JSON texts of single values.

/// A quoted string; the text is UTF-8, bytes that are not become the replacement character.
std::string jsonText(std::string_view text);
std::string jsonText(const QString& text);
/// A value with its type kept: truth values, strings, integers and numbers; anything else is null.
std::string jsonText(const QVariant& value);
/// The shortest text that reads as exactly this number in double precision; null unless finite.
std::string jsonNumber(double number);

}  // namespace grouptracker
