#include "host/camera/StorageText.h"

#include "host/base/InputError.h"
#include "host/base/LineReader.h"
#include "host/base/XmlElements.h"

#include <QRegularExpression>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string_view>

namespace grouptracker {

namespace {

constexpr std::size_t longestLine = 64 * 1024;  // bytes
// Together they bound how deep OpenCV's parser of YAML can call itself.
constexpr std::size_t longestYamlLine = 1024;  // bytes
constexpr int deepestValue = 16;               // brackets around it

constexpr const char* unreadable = "not a readable OpenCV file";

bool isControl(char c) {
  return static_cast<unsigned char>(c) < ' ' && c != '\t';
}

int opened(char c) {
  return c == '[' || c == '{' ? 1 : (c == ']' || c == '}' ? -1 : 0);
}

/// The brackets that the part of a list opens less those that it closes. Brackets in texts and
/// comments are none.
int openedBy(std::string_view part) {
  int depth = 0;
  char quote = 0;
  for (std::size_t i = 0; i < part.size() && (quote != 0 || part[i] != '#'); ++i) {
    const char c = part[i];
    if (quote != 0) {
      i += quote == '"' && c == '\\' ? 1 : 0;
      quote = c == quote ? '\0' : quote;
    } else {
      quote = c == '"' || c == '\'' ? c : '\0';
      depth += opened(c);
    }
  }
  return depth;
}

/// Follows the lines of a YAML text and refuses the first that cannot stand where it does.
class YamlOutline {
 public:
  /// The lines must outlive the outline.
  explicit YamlOutline(const LineReader& lines) : m_lines(lines) {}

  void takeLine();
  void takeEnd() const;

 private:
  [[noreturn]] void refuse(const char* problem) const;
  void takeEntry(const QString& line);

  const LineReader& m_lines;
  bool m_hasStart = false;  ///< the "---" was there
  bool m_hasEntry = false;  ///< a key was there
  int m_depth = 0;          ///< brackets that are open behind the last line
};

void YamlOutline::refuse(const char* problem) const {
  throw m_lines.error(std::string(unreadable) + ": " + problem);
}

void YamlOutline::takeLine() {
  static const QRegularExpression version(R"(^%YAML[: ]1\.\d+ *$)");
  static const QRegularExpression start("^--- *$");
  static const QRegularExpression nothing("^ *(#.*)?$");
  // A byte for a character, so that no text is too odd to be looked at.
  const QString line = QString::fromLatin1(m_lines.line().c_str());
  if (m_lines.number() == 1) {
    if (!version.match(line).hasMatch()) {
      throw m_lines.error(unreadable);
    }
  } else if (m_depth > 0) {
    m_depth = std::max(0, m_depth + openedBy(m_lines.line()));
  } else if (!m_hasStart && !m_hasEntry && start.match(line).hasMatch()) {
    m_hasStart = true;
  } else if (!nothing.match(line).hasMatch()) {
    takeEntry(line);
  }
}

void YamlOutline::takeEntry(const QString& line) {
  // The last group begins with the brackets of a list or map, if the value is one.
  static const QRegularExpression entry(
      R"(^( *)([A-Za-z_][-\w .]*:| -)(?= |$)(?: *!\S+(?= |$))? *([[{].*)?)");
  const QRegularExpressionMatch found = entry.match(line);
  if (!found.hasMatch() || (!m_hasEntry && found.capturedLength(1) > 0)) {
    refuse("neither \"key: value\" nor part of a value");
  }
  m_hasEntry = true;
  m_depth = std::max(0, openedBy(found.captured(3).toLatin1().toStdString()));
}

void YamlOutline::takeEnd() const {
  if (m_depth > 0) {
    refuse("a list does not end");
  }
}

/// All lines; those of YAML are looked at on the way, since no other parser does.
std::string readText(std::istream& in, const std::string& name) {
  LineReader lines(in, name, longestLine);
  YamlOutline yaml(lines);
  std::string text;
  int depth = 0;
  while (lines.next()) {
    const std::string& line = lines.line();
    if (std::any_of(line.begin(), line.end(), isControl)) {
      throw lines.error("holds bytes that are no text");
    }
    text += line;
    text += '\n';
    for (const char c : line) {
      depth = std::max(0, depth + opened(c));
      if (depth > deepestValue) {
        throw lines.error("values are nested too deep");
      }
    }
    if (text.front() == '<' || text.front() == '{') {
      continue;
    }
    if (line.size() > longestYamlLine) {
      throw lines.error("the line is longer than " + std::to_string(longestYamlLine) + " bytes");
    }
    yaml.takeLine();
  }
  yaml.takeEnd();
  return text;
}

void refuseBrokenXml(const std::string& text, const std::string& name) {
  std::istringstream in(text);
  XmlElements xml(in, name);
  while (xml.next()) {
  }
}

void refuseBrokenJson(const std::string& text, const std::string& name) {
  try {
    const auto ignored = nlohmann::json::parse(text, nullptr, true, true);
  } catch (const nlohmann::json::parse_error& failure) {
    const auto end =
        text.begin() + static_cast<std::ptrdiff_t>(std::min(failure.byte, text.size()));
    const auto line = 1 + static_cast<std::uint64_t>(std::count(text.begin(), end, '\n'));
    throw InputError(name, line, "not valid JSON");
  } catch (const nlohmann::json::out_of_range&) {
    throw InputError(name, 1, "holds a number that is not finite");
  }
}

}  // namespace

void refuseUnsoundStorage(std::istream& in, const std::string& name) {
  const std::string text = readText(in, name);
  if (text.starts_with('<')) {
    refuseBrokenXml(text, name);
  } else if (text.starts_with('{')) {
    refuseBrokenJson(text, name);
  }
}

}  // namespace grouptracker
