#include "host/batch/ManifestReader.h"

#include "host/base/InputFile.h"
#include "host/base/LineReader.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace grouptracker {

namespace {

constexpr char quote = '"';

std::string trimmed(const std::string& text) {
  const auto begin = text.find_first_not_of(" \t");
  return begin == std::string::npos ? std::string()
                                    : text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

/// The cells of a line; in quotes a comma is one and two quotes are one. None when a quote has no
/// end in the line.
std::optional<std::vector<std::string>> cellsOf(const std::string& line) {
  std::vector<std::string> cells(1);
  bool isQuoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const bool isPair = isQuoted && line[i] == quote && line.substr(i + 1, 1) == "\"";
    if (line[i] == quote && !isPair) {
      isQuoted = !isQuoted;
    } else if (line[i] == ',' && !isQuoted) {
      cells.emplace_back();
    } else {
      cells.back() += line[i];
      i += isPair ? 1 : 0;
    }
  }
  std::transform(cells.begin(), cells.end(), cells.begin(), trimmed);
  return isQuoted ? std::nullopt : std::optional(std::move(cells));
}

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
    const auto columns = m_lines.nextFilled() ? cellsOf(m_lines.line()) : std::nullopt;
    if (!columns) {
      throw m_lines.error("a first line that names the columns is expected, such as name,input");
    }
    m_columns = *columns;
    m_headerLine = m_lines.number();
  }

  bool next(ManifestEntry& entry) override;

 private:
  void addSettings(const std::vector<std::string>& cells, ManifestEntry& entry) const;

  InputFile m_file;
  LineReader m_lines;
  ProblemHandler m_onProblem;
  std::vector<std::string> m_columns;
  std::uint64_t m_headerLine = 0;
};

bool CsvManifest::next(ManifestEntry& entry) {
  while (m_lines.nextFilled()) {
    const auto cells = cellsOf(m_lines.line());
    if (!cells) {
      m_onProblem(m_lines.error("a quote without its end"));
    } else if (cells->size() != m_columns.size()) {
      m_onProblem(m_lines.error(std::to_string(cells->size()) + " cells where the first line has " +
                                std::to_string(m_columns.size())));
    } else {
      entry.place = m_lines.place();
      addSettings(*cells, entry);
      return true;
    }
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
  if (text.find_first_of("\",\n\r") == std::string::npos && trimmed(text) == text) {
    return text;
  }
  std::string cell(1, quote);
  for (const char letter : text) {
    const bool breaksLine = letter == '\n' || letter == '\r';
    cell += breaksLine ? ' ' : letter;
    cell += letter == quote ? "\"" : "";
  }
  return cell + quote;
}

}  // namespace grouptracker
