#include "host/batch/ManifestReader.h"

#include "host/base/InputFile.h"
#include "host/base/JsonLine.h"
#include "host/base/LineReader.h"
#include "host/input/FieldSplitter.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace grouptracker {

namespace {

/// Calls `take` with each part of a text between semicolons.
template <typename Take>
void divide(const std::string& text, const Take& take) {
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(';', begin), text.size());
    if (end > begin) {
      take(text.substr(begin, end - begin));
    }
    begin = end + 1;
  }
}

/// The reader of a table.
class CsvManifest : public ManifestReader {
 public:
  CsvManifest(const std::string& path, ProblemHandler onProblem)
      : m_file(path), m_lines(m_file.stream(), path), m_onProblem(std::move(onProblem)) {
    if (!m_lines.nextFilled()) {
      throw m_lines.error("a first line that names the columns is expected, such as name,input");
    }
    try {
      m_cells.split(m_lines.line(), m_columns);
    } catch (const ValueProblem& problem) {
      throw m_lines.error(problem.what());
    }
    m_headerLine = m_lines.number();
  }

  bool next(ManifestEntry& entry) override;

 private:
  void addSettings(const std::vector<std::string>& cells, ManifestEntry& entry) const;

  InputFile m_file;
  LineReader m_lines;
  FieldSplitter m_cells{","};
  ProblemHandler m_onProblem;
  std::vector<std::string> m_columns;
  std::uint64_t m_headerLine = 0;
};

bool CsvManifest::next(ManifestEntry& entry) {
  std::vector<std::string> cells;
  while (m_lines.nextFilled()) {
    try {
      m_cells.split(m_lines.line(), cells);
    } catch (const ValueProblem& problem) {
      m_onProblem(m_lines.error(problem.what()));
      continue;
    }
    if (cells.size() == m_columns.size()) {
      entry.place = m_lines.place();
      addSettings(cells, entry);
      return true;
    }
    m_onProblem(m_lines.error(
        fmt::format("{} cells where the first line has {}", cells.size(), m_columns.size())));
  }
  return false;
}

void CsvManifest::addSettings(const std::vector<std::string>& cells, ManifestEntry& entry) const {
  entry.settings.clear();
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const auto add = [&](const std::string& value) {
      entry.settings.push_back({m_columns[i], value, m_headerLine, m_lines.number()});
    };
    // Only this option can come several times.
    m_columns[i] == "set" ? divide(cells[i], add) : cells[i].empty() ? void() : add(cells[i]);
  }
}

}  // namespace

std::unique_ptr<ManifestReader> ManifestReader::open(const std::string& path,
                                                     ProblemHandler onProblem) {
  if (path.ends_with(".toml")) {
    return openTomlManifest(path, std::move(onProblem));
  }
  return std::make_unique<CsvManifest>(path, std::move(onProblem));
}

std::string csvCell(const std::string& text) {
  const auto isBlank = [](char letter) { return letter == ' ' || letter == '\t'; };
  const bool isPlain = text.find_first_of("\",\n\r") == std::string::npos;
  if (text.empty() || (isPlain && !isBlank(text.front()) && !isBlank(text.back()))) {
    return text;
  }
  std::string line = text;  // quotes end on their line
  std::replace_if(
      line.begin(), line.end(), [](char letter) { return letter == '\n' || letter == '\r'; }, ' ');
  return doublyQuoted(line);
}

}  // namespace grouptracker
