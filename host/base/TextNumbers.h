#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace grouptracker {

/// Numbers out of text; never depends on the locale. Each function throws `ValueProblem`
/// whose text says in a few words what is wrong.

/// Splits a line at blanks and tabulators and reads every piece as a finite number. Numbers may
/// carry a sign and an exponent. The error names the first piece that is no such number.
void parseNumbers(std::string_view line, std::vector<double>& numbers);
/// The same for pieces between commas, with or without blanks around them; none may be empty.
void parseCommaNumbers(std::string_view line, std::vector<double>& numbers);
/// One such number that fills the text.
double parseNumber(std::string_view text);
/// A number as a whole one from 0 to `largest`; `name` says in the error what it is.
std::int64_t wholeNumber(double value, double largest, const char* name);

}  // namespace grouptracker
