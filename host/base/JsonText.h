#pragma once

#include <string>
#include <string_view>

namespace grouptracker {

/// JSON texts of single values.

/// A quoted string; the text is UTF-8, bytes that are not become the replacement character.
std::string jsonText(std::string_view text);
/// The shortest text that reads as exactly this number in double precision; null unless finite.
std::string jsonNumber(double number);

}  // namespace grouptracker
