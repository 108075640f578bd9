#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace grouptracker {

/// Splits the lines of a table into fields: at commas, semicolons or tabulators, whichever a line
/// of it holds, else at blanks. Fields between quotes may hold the separator, and a quote twice for
/// one (RFC 4180); they end on their line.
class FieldSplitter {
 public:
  /// For tables that look like this line.
  explicit FieldSplitter(std::string_view sample);
  /// At blanks and tabulators, however many.
  FieldSplitter() = default;

  /// Fields without the blanks around them. A quote that is not closed is a `ValueProblem`.
  void split(std::string_view line, std::vector<std::string>& fields) const;
  /// Whether the table has separators, so that a field may be empty.
  bool hasSeparator() const { return m_separator != ' '; }
  /// A field as a number; where semicolons separate, a comma may stand for the point in it. Throws
  /// `ValueProblem`.
  double number(const std::string& field) const;

 private:
  void splitAtBlanks(std::string_view line, std::vector<std::string>& fields) const;

  char m_separator = ' ';
};

}  // namespace grouptracker
