#include "host/base/InputFile.h"
#include "host/batch/ManifestReader.h"

#include <algorithm>
#include <exception>
#include <sstream>
#include <toml.hpp>
#include <utility>

namespace grouptracker {

namespace {

const char* const recordingKey = "recording";
const char* const defaultsKey = "defaults";

std::string textOf(const toml::value& value) {
  if (value.is_string()) {
    return value.as_string().str;
  }
  std::ostringstream text;
  text << value;
  return text.str();
}

std::uint64_t lineOf(const toml::value& value) {
  return value.location().line();
}

/// Keys in the order of the file, so that their problems are, too.
std::vector<std::pair<std::string, toml::value>> inOrder(const toml::table& table) {
  std::vector<std::pair<std::string, toml::value>> sorted(table.begin(), table.end());
  std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) {
    return std::pair(lineOf(a.second), a.first) < std::pair(lineOf(b.second), b.first);
  });
  return sorted;
}

/// What the parser says is a drawing of several lines; its first line says what is wrong.
InputError errorOf(const toml::exception& error, const std::string& path) {
  std::string problem = error.what();
  problem = problem.substr(0, problem.find('\n'));
  const auto from = problem.find("] ");
  problem = from == std::string::npos ? problem : problem.substr(from + 2);
  return {path, error.location().line(), problem};
}

toml::value parsed(std::istream& text, const std::string& path) {
  try {
    return toml::parse(text, path);
  } catch (const toml::exception& error) {
    throw errorOf(error, path);
  }
}

class TomlManifest : public ManifestReader {
 public:
  TomlManifest(const std::string& path, ProblemHandler onProblem)
      : m_path(path), m_onProblem(std::move(onProblem)) {
    InputFile file(path);
    std::stringstream text;  // the parser goes back and forth in it
    text << file.stream().rdbuf();
    for (const auto& [key, value] : inOrder(parsed(text, path).as_table())) {
      if (key == recordingKey && value.is_array()) {
        m_recordings = value.as_array();
      } else if (key == defaultsKey && value.is_table()) {
        m_defaults = value.as_table();
      } else {
        m_onProblem({path, lineOf(value), key + ": only [defaults] and [[recording]] are known"});
      }
    }
  }

  bool next(ManifestEntry& entry) override {
    for (; m_next < m_recordings.size(); ++m_next) {
      const toml::value& recording = m_recordings[m_next];
      if (!recording.is_table()) {
        m_onProblem({m_path, lineOf(recording), "a table [[recording]] is expected"});
        continue;
      }
      entry.place = {m_path, lineOf(recording)};
      entry.settings.clear();
      toml::table defaults = m_defaults;
      for (const auto& [key, value] : recording.as_table()) {
        defaults.erase(key);
      }
      addSettings(defaults, entry);
      addSettings(recording.as_table(), entry);
      ++m_next;
      return true;
    }
    return false;
  }

 private:
  void addSettings(const toml::table& table, ManifestEntry& entry) const {
    for (const auto& [key, value] : inOrder(table)) {
      if (!value.is_array()) {
        addSetting(key, value, lineOf(value), entry);
        continue;
      }
      for (const toml::value& item : value.as_array()) {
        addSetting(key, item, lineOf(value), entry);
      }
    }
  }

  void addSetting(const std::string& key, const toml::value& value, std::uint64_t keyLine,
                  ManifestEntry& entry) const {
    if (value.is_table() || value.is_array()) {
      m_onProblem({m_path, lineOf(value), key + ": a value, or a list of values, is expected"});
      return;
    }
    entry.settings.push_back({key, textOf(value), keyLine, lineOf(value)});
  }

  std::string m_path;
  ProblemHandler m_onProblem;
  toml::array m_recordings;
  toml::table m_defaults;
  std::size_t m_next = 0;
};

}  // namespace

std::unique_ptr<ManifestReader> openTomlManifest(const std::string& path,
                                                 ProblemHandler onProblem) {
  return std::make_unique<TomlManifest>(path, std::move(onProblem));
}

}  // namespace grouptracker
