#include "host/input/FieldSplitter.h"

#include "host/base/InputError.h"
#include "host/base/TextNumbers.h"

#include <algorithm>

namespace grouptracker {

namespace {

constexpr std::string_view blanks = " \t\v\f\r";

std::string_view trimmed(std::string_view piece) {
  const std::size_t begin = piece.find_first_not_of(blanks);
  return begin == std::string_view::npos
             ? std::string_view()
             : piece.substr(begin, piece.find_last_not_of(blanks) + 1 - begin);
}

/// Takes a quoted text from the start of `rest`, which then begins behind it.
std::string takeQuoted(std::string_view& rest) {
  std::string text;
  for (std::size_t i = 1; i < rest.size(); ++i) {
    if (rest[i] != '"') {
      text += rest[i];
    } else if (i + 1 < rest.size() && rest[i + 1] == '"') {
      text += rest[i++];
    } else {
      rest.remove_prefix(i + 1);
      return text;
    }
  }
  throw ValueProblem("a quote is not closed on its line");
}

}  // namespace

// A list with decimal commas has semicolons, and a list with commas may have a blank behind each:
// so the order of the question matters.
FieldSplitter::FieldSplitter(std::string_view sample) {
  for (const char separator : {';', '\t', ','}) {
    if (sample.find(separator) != std::string_view::npos) {
      m_separator = separator;
      return;
    }
  }
}

void FieldSplitter::split(std::string_view line, std::vector<std::string>& fields) const {
  fields.clear();
  if (!hasSeparator()) {
    splitAtBlanks(line, fields);
    return;
  }
  for (bool isMore = true; isMore;) {
    const std::size_t begin = m_separator == '\t' ? 0 : line.find_first_not_of(blanks);
    line.remove_prefix(std::min(begin, line.size()));
    const bool isQuoted = line.starts_with('"');
    std::string quoted = isQuoted ? takeQuoted(line) : std::string();
    const std::size_t end = std::min(line.find(m_separator), line.size());
    if (isQuoted && !trimmed(line.substr(0, end)).empty()) {
      throw ValueProblem("something follows a quoted field");
    }
    fields.push_back(isQuoted ? std::move(quoted) : std::string(trimmed(line.substr(0, end))));
    isMore = end < line.size();
    line.remove_prefix(std::min(end + 1, line.size()));
  }
}

void FieldSplitter::splitAtBlanks(std::string_view line, std::vector<std::string>& fields) const {
  std::size_t begin = line.find_first_not_of(blanks);
  while (begin != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(blanks, begin), line.size());
    fields.emplace_back(line.substr(begin, end - begin));
    begin = line.find_first_not_of(blanks, end);
  }
}

double FieldSplitter::number(const std::string& field) const {
  const auto comma = field.find(',');
  if (m_separator != ';' || comma == std::string::npos) {
    return parseNumber(field);
  }
  std::string pointed = field;
  pointed[comma] = '.';
  return parseNumber(pointed);
}

}  // namespace grouptracker
