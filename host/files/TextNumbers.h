#pragma once

#include <string_view>
#include <vector>

/// Splits a line at blanks and tabulators and reads every piece as a finite number. Numbers may
/// carry a sign and an exponent. Throws `std::invalid_argument` whose text names the first piece
/// that is no such number; never depends on the locale.
void parseNumbers(std::string_view line, std::vector<double>& numbers);
