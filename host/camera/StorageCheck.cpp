#include "host/camera/StorageCheck.h"

#include "host/base/InputError.h"
#include "host/base/LineReader.h"
#include "host/base/XmlElements.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>

namespace grouptracker {

namespace {

constexpr std::size_t longestLine = 64 * 1024;  // bytes
// Together they bound how deep OpenCV's parser of YAML can call itself.
constexpr std::size_t longestYamlLine = 1024;  // bytes
constexpr int deepestValue = 16;               // brackets around it

bool isControl(char c) {
  return static_cast<unsigned char>(c) < ' ' && c != '\t';
}

int opened(char c) {
  return c == '[' || c == '{' ? 1 : (c == ']' || c == '}' ? -1 : 0);
}

/// All lines; those of YAML are looked at on the way, since no other parser does.
std::string readText(std::istream& in, const std::string& name) {
  LineReader lines(in, name, longestLine);
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
    if (text.front() != '<' && text.front() != '{' && line.size() > longestYamlLine) {
      throw lines.error("the line is longer than " + std::to_string(longestYamlLine) + " bytes");
    }
  }
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
