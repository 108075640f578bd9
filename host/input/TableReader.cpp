#include "host/input/TableReader.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/base/PersonNames.h"
#include "host/base/TextNumbers.h"
#include "host/input/FieldSplitter.h"
#include "host/people/ObservationSource.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

const char* const laboratoryNote =
    "no line names the columns; they are taken as id, frame, x, y, as pedestrian laboratories "
    "write "
    "them";

bool isComment(std::string_view line) {
  const auto begin = line.find_first_not_of(" \t");
  return begin != std::string_view::npos && line[begin] == '#';
}

std::string_view commentText(std::string_view line) {
  const auto begin = line.find_first_not_of("# \t");
  return begin == std::string_view::npos ? std::string_view() : line.substr(begin);
}

bool isNumber(const FieldSplitter& splitter, const std::string& field) {
  try {
    splitter.number(field);
    return true;
  } catch (const ValueProblem&) {
    return false;
  }
}

/// The rate that a comment such as "framerate: 16.00 fps" names; none of any other comment.
std::optional<double> rateIn(std::string_view comment) {
  const auto colon = comment.find_first_of(":=");
  if (colon == std::string_view::npos) {
    return std::nullopt;
  }
  std::string key;
  for (const char c : comment.substr(0, colon)) {
    if (std::isalpha(static_cast<unsigned char>(c)) != 0) {
      key += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
  }
  if (key != "framerate" && key != "fps") {
    return std::nullopt;
  }
  std::vector<std::string> words;
  FieldSplitter().split(comment.substr(colon + 1), words);
  return parseNumber(words.empty() ? std::string() : words.front());
}

/// Puts together again what blanks have parted within brackets, as in "x[in m]".
void joinUnits(std::vector<std::string>& names) {
  std::vector<std::string> whole;
  bool isOpen = false;
  for (const std::string& name : names) {
    if (isOpen) {
      whole.back() += ' ' + name;
    } else {
      whole.push_back(name);
    }
    const auto bracket = whole.back().find_first_of("[(");
    isOpen = bracket != std::string::npos &&
             whole.back().find_first_of("])", bracket) == std::string::npos;
  }
  names = std::move(whole);
}

/// The lines of a table, one after the other.
class TableParser {
 public:
  TableParser(const std::string& name, const TableChoice& choice, const ProblemHandler& onProblem)
      : m_choice(choice), m_rows(name, onProblem) {}

  void take(const std::string& line, std::uint64_t number) {
    if (isComment(line)) {
      takeComment(commentText(line));
    } else if (m_hasColumns || !begin(line)) {
      addRow(line, number);
    }
  }

  TrackRecording finish() {
    TrackRecording recording = m_rows.finish();
    recording.note = m_note;
    return recording;
  }

 private:
  void takeComment(std::string_view comment) {
    m_hasComments = true;
    if (const auto rate = rateIn(comment)) {
      m_rows.setRate(*rate);
    }
    FieldSplitter(comment).split(comment, m_fields);
    joinUnits(m_fields);
    if (m_hasColumns || m_fields.size() < fewestNames) {
      return;
    }
    try {
      m_named = findColumns(m_fields, m_choice);
    } catch (const ValueProblem&) {
      // Most comments are no list of columns.
    }
  }

  /// Learns from the first line that is no comment where the columns are; whether the line has been
  /// used up by that.
  bool begin(const std::string& line) {
    // Once: what is wrong with the names would be wrong again at every line.
    m_hasColumns = true;
    m_splitter = FieldSplitter(line);
    m_splitter.split(line, m_fields);
    m_count = m_fields.size();
    const bool isHeader = std::none_of(m_fields.begin(), m_fields.end(), [this](const auto& field) {
      return isNumber(m_splitter, field);
    });
    if (isHeader) {
      m_rows.setColumns(findColumns(m_fields, m_choice));
      return true;
    }
    m_rows.setColumns(m_choice.order.empty() ? columnsOfComments() : findColumns({}, m_choice));
    return false;
  }

  TrackColumns columnsOfComments() {
    if (m_named) {
      return *m_named;
    }
    if (!m_hasComments || !m_choice.isEmpty()) {
      throw ValueProblem(
          "no line before this one names the columns; say what they hold with --columns, such as "
          "frame,id,x,y");
    }
    m_note = laboratoryNote;
    return findColumns({"id", "frame", "x", "y"}, m_choice);
  }

  void addRow(const std::string& line, std::uint64_t number) {
    const TrackColumns& columns = m_rows.columns();
    if (columns.fewest() == 0) {
      return;  // nobody knows what it holds, which has been said
    }
    m_splitter.split(line, m_fields);
    const bool fits = m_splitter.hasSeparator() ? m_fields.size() == m_count
                                                : m_fields.size() >= columns.fewest();
    if (!fits || m_fields.size() < columns.fewest()) {
      throw ValueProblem(fmt::format("{} fields are expected, not {}",
                                     std::max(m_count, columns.fewest()), m_fields.size()));
    }
    TrackRows::Row row{};
    for (std::size_t i = 0; i < trackQuantities; ++i) {
      row[i] = columns.places[i] ? numberIn(i, m_fields[*columns.places[i]]) : 0.0;
    }
    m_rows.add(row, number);
  }

  double numberIn(std::size_t quantity, const std::string& field) const {
    const bool isPerson = static_cast<TrackQuantity>(quantity) == TrackQuantity::person;
    return isPerson ? personIn(field) : m_splitter.number(field);
  }

  /// The number that stands for the person.
  double personIn(const std::string& field) const {
    if (field.empty()) {
      throw ValueProblem("the id is missing");
    }
    if (!isNumber(m_splitter, field)) {
      return PersonNames::ofProgram().numberOf(field);
    }
    const double number = m_splitter.number(field);
    return PersonNames::ofProgram().numberOf(wholeNumber(number, largestPerson, "id"));
  }

  static constexpr std::size_t fewestNames = 4;

  const TableChoice& m_choice;
  TrackRows m_rows;
  FieldSplitter m_splitter;
  std::optional<TrackColumns> m_named;  ///< by a comment
  bool m_hasComments = false;
  bool m_hasColumns = false;  ///< known, or asked for in vain
  std::size_t m_count = 0;    ///< of the fields of the first line
  std::string m_note;
  std::vector<std::string> m_fields;  ///< kept from line to line
};

}  // namespace

TrackRecording readTable(std::istream& in, const std::string& name, const TableChoice& choice,
                         const ProblemHandler& onProblem) {
  TableParser parser(name, choice, onProblem);
  LineReader lines(in, name, longestRow);
  while (lines.nextFilled()) {
    try {
      parser.take(lines.line(), lines.number());
    } catch (const ValueProblem& problem) {
      onProblem(lines.error(problem.what()));
    }
  }
  return parser.finish();
}

bool isTable(const std::vector<std::string>& head) {
  constexpr std::size_t fewestFields = 3;  // one too few is worth a better message
  if (head.empty() || head.front().find('\0') != std::string::npos) {
    return false;
  }
  const auto first = std::find_if_not(head.begin(), head.end(), isComment);
  if (first == head.end()) {
    return true;
  }
  std::vector<std::string> fields;
  try {
    FieldSplitter(*first).split(*first, fields);
  } catch (const ValueProblem&) {
    return false;
  }
  return fields.size() >= fewestFields;
}

OpenedInput openTable(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  input.files = {path};
  InputFile file(path);
  openRecording(readTable(file.stream(), path, options.table, options.onProblem), options, input);
  return input;
}

}  // namespace grouptracker
