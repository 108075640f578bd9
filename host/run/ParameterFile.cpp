#include "host/run/ParameterFile.h"

#include "host/base/FileDescriptor.h"
#include "host/base/Suggestion.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

namespace grouptracker {

namespace {

/// What a user is told to write, by the type of the value.
const std::array<const char*, std::variant_size_v<ParameterValue>> expectations{
    "a number", "a whole number", "a whole number", "0 or 1", "a text without blanks"};

const char* const delayLabel = "temporalWinSize:";
const char* const saveLabel = "saveOutput:";
const char* const displayLabel = "extDisplayOn:";

const char* const commentsStandBehind = "; comments stand behind the last value only";

/// Goes through the text like the tracker, with the formatted extraction of the standard streams,
/// so that both agree on what a value is; counts the lines on its way.
class Walk {
 public:
  explicit Walk(std::string content) : m_content(std::move(content)), m_in(m_content) {}

  /// Reads one token or value; false when there is none of that type.
  template <typename T>
  bool read(T& value) {
    skipBlanks();
    m_begin = position();
    return static_cast<bool>(m_in >> value);
  }
  /// What was read last, as it stands there.
  std::string text() { return m_content.substr(m_begin, position() - m_begin); }
  std::uint64_t line() const { return m_line; }
  bool isAtEnd() {
    skipBlanks();
    return m_in.peek() == EOF;
  }

 private:
  // Asked of the buffer: at the end the stream itself has no position any more.
  std::size_t position() {
    return static_cast<std::size_t>(m_in.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in));
  }
  void skipBlanks() {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    for (int next = m_in.peek(); next != EOF && blanks.find(static_cast<char>(next)) != blanks.npos;
         next = m_in.peek()) {
      m_line += m_in.get() == '\n' ? 1 : 0;
    }
  }

  std::string m_content;
  std::istringstream m_in;
  std::size_t m_begin = 0;
  std::uint64_t m_line = 1;
};

/// Reads the value of a row; throws what is wrong with it.
ParameterEntry readValue(Walk& walk, const ParameterRow& row) {
  ParameterEntry entry{&row, row.empty, {}, 0};
  if (!std::visit([&](auto& value) { return walk.read(value); }, entry.value)) {
    throw ValueProblem(
        fmt::format("{} is expected after \"{}\"", expectations[row.empty.index()], row.label));
  }
  entry.text = walk.text();
  entry.line = walk.line();
  return entry;
}

/// Reads the pair of a row; throws what is wrong with it.
ParameterEntry readEntry(Walk& walk, const ParameterRow& row) {
  constexpr std::size_t longestQuote = 40;  // characters of a wrong token shown to the user
  std::string token;
  if (!walk.read(token)) {
    throw ValueProblem(fmt::format("the file ends where the label \"{}\" is expected", row.label));
  }
  if (token != row.label) {
    throw ValueProblem(fmt::format("the label \"{}\" is expected instead of \"{}\"{}", row.label,
                                   token.substr(0, longestQuote),
                                   token.front() == '#' ? commentsStandBehind : ""));
  }
  return readValue(walk, row);
}

/// What the host itself needs of the values.
void derive(ParameterFile& file) {
  file.needsImages = false;
  for (const ParameterEntry& entry : file.values) {
    const std::string_view label = entry.row->label;
    if (label == delayLabel) {
      file.delay = std::get<unsigned int>(entry.value);
    } else if (label == saveLabel || label == displayLabel) {
      file.needsImages = file.needsImages || std::get<bool>(entry.value);
    }
  }
}

/// What is wrong with a label that no parameter has.
ValueProblem unknownLabel(const std::string& label) {
  std::vector<std::string> known;
  for (const ParameterRow& row : parameterRows()) {
    known.emplace_back(row.label);
    known.back().pop_back();
  }
  return ValueProblem(label + " is no parameter" + didYouMean(label, known));
}

}  // namespace

double ParameterEntry::number() const {
  return std::strtod(text.c_str(), nullptr);
}

const ParameterEntry* ParameterFile::find(std::string_view label) const {
  const auto found = std::find_if(values.begin(), values.end(),
                                  [label](const auto& entry) { return entry.row->label == label; });
  return found == values.end() ? nullptr : &*found;
}

double ParameterFile::number(std::string_view label) const {
  const ParameterEntry* const entry = find(label);
  return entry == nullptr ? 0.0 : entry->number();
}

void ParameterFile::set(const std::string& label, const std::string& value) {
  const std::string whole = label.ends_with(':') ? label : label + ":";
  const auto found = std::find_if(values.begin(), values.end(),
                                  [&](const auto& entry) { return entry.row->label == whole; });
  if (found == values.end()) {
    throw unknownLabel(label);
  }
  Walk walk(value);
  ParameterEntry entry = readValue(walk, *found->row);
  if (!walk.isAtEnd()) {
    throw ValueProblem(fmt::format("{} is expected after \"{}\" instead of \"{}\"",
                                   expectations[entry.value.index()], whole, value));
  }
  entry.line = found->line;
  *found = std::move(entry);
  derive(*this);
}

std::string ParameterFile::text() const {
  return with({});
}

std::string ParameterFile::with(const std::map<std::string, double>& changes) const {
  std::string result;
  for (const ParameterEntry& entry : values) {
    const auto change = changes.find(entry.row->label);
    const std::string value =
        change == changes.end() ? entry.text : fmt::format("{}", change->second);
    result += fmt::format("{:<24} {}\n", entry.row->label, value);
  }
  return result;
}

ParameterFile readParameterFile(std::istream& in, const std::string& name) {
  std::ostringstream content;
  content << in.rdbuf();
  Walk walk(content.str());
  ParameterFile file;
  try {
    for (const ParameterRow& row : parameterRows()) {
      file.values.push_back(readEntry(walk, row));
    }
  } catch (const ValueProblem& problem) {
    file.problem = InputError(name, walk.line(), problem.what());
  }
  derive(file);
  return file;
}

ParameterFile readParameterFile(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::exists(path, ignored) && !std::filesystem::is_regular_file(path, ignored) &&
      !std::filesystem::is_directory(path, ignored)) {
    throw InputError(path, "the parameters must be in a regular file");
  }
  // Diagnostics name a file, which may be any.
  constexpr std::uintmax_t longest = 1024 * 1024;  // bytes
  const std::uintmax_t size = std::filesystem::file_size(path, ignored);
  if (!ignored && size > longest) {
    throw InputError(path, "is longer than 1 MiB, so it holds no parameters");
  }
  if (!ignored && size == 0) {  // the system's own files look like that and may have no end
    std::istringstream nothing;
    return readParameterFile(nothing, path);
  }
  std::ifstream in(path);
  if (!in.is_open()) {
    ParameterFile file;
    file.problem =
        InputError(path, 1,
                   fmt::format("{}; the label \"{}\" is expected",
                               systemProblem("cannot be opened"), parameterRows().front().label));
    return file;
  }
  return readParameterFile(in, path);
}

ParameterFile readValidParameterFile(const std::string& path) {
  ParameterFile file = readParameterFile(path);
  if (file.problem) {
    throw *file.problem;
  }
  return file;
}

}  // namespace grouptracker
