#include "host/batch/RecordingRules.h"

#include "host/base/FileDescriptor.h"
#include "host/base/Suggestion.h"

#include <QCryptographicHash>
#include <QString>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <tuple>
#include <unistd.h>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

const char* const nameKey = "name";
const char* const inputKey = "input";
const char* const truthKey = "truth";
const char* const repeatableKey = "set";

/// What the batch itself says to `run`.
constexpr std::array<std::string_view, 3> ownOptions{"output", "status", "quiet"};
/// What is for somebody who watches one run, or for people who arrive from elsewhere.
constexpr std::array<std::string_view, 4> idleOptions{"show", "print-parameters", "strict",
                                                      "log-format"};
/// What the batch itself writes into a recording's folder.
constexpr std::array<std::string_view, 5> ownFiles{"groups.jsonl", "report.html", "scores.json",
                                                   "log.txt", "result.json"};

template <typename Names>
bool isAmong(const Names& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::optional<std::string> problemOfOutput(const std::string& key, const std::string& file) {
  if (file.empty() || file.front() == '.' || file == "-" || file.find('/') != std::string::npos) {
    return fmt::format("{}: {} is no name of a file, which will be in the recording's folder", key,
                       file);
  }
  return isAmong(ownFiles, file)
             ? std::optional(fmt::format("{}: {} is written for every recording", key, file))
             : std::nullopt;
}

bool isWithin(const fs::path& file, const fs::path& folder) {
  const auto [end, ignored] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
  return end == folder.end();
}

}  // namespace

RecordingRules::RecordingRules(const std::vector<OptionKind>& options, Check check,
                               const std::string& manifest, const std::string& results)
    : m_check(std::move(check)),
      m_manifest(manifest),
      m_manifestFolder(fs::path(manifest).parent_path()),
      m_results(fs::weakly_canonical(results)) {
  for (const OptionKind& option : options) {
    m_options.emplace(option.name, option);
  }
}

bool RecordingRules::isKnown(const Setting& setting) const {
  return !problemOfKey(setting.key);
}

std::optional<std::string> RecordingRules::problemOfKey(const std::string& key) const {
  if (key == nameKey || key == inputKey || key == truthKey) {
    return std::nullopt;
  }
  if (isAmong(ownOptions, key)) {
    return key + " is given by the batch itself";
  }
  if (isAmong(idleOptions, key)) {
    return key + " has no sense in a batch";
  }
  if (m_options.contains(key)) {
    return std::nullopt;
  }
  std::vector<std::string> known{nameKey, inputKey, truthKey};
  for (const auto& [name, kind] : m_options) {
    known.push_back(name);
  }
  return key + " is no option of run" + didYouMean(key, known);
}

/// Whether a known setting names a file that is written.
bool RecordingRules::isOutput(const Setting& setting) const {
  const auto option = m_options.find(setting.key);
  return option != m_options.end() && option->second.writes &&
         setting.value != option->second.noFile;
}

void RecordingRules::check(const ManifestEntry& entry, const ProblemHandler& onProblem) {
  std::set<std::string> keys;
  std::set<std::string> outputs;
  for (const Setting& setting : entry.settings) {
    const bool comesAgain = !keys.insert(setting.key).second && setting.key != repeatableKey;
    const auto wrongKey =
        comesAgain ? std::optional(setting.key + " comes twice") : problemOfKey(setting.key);
    if (wrongKey && m_toldKeys.emplace(setting.key, setting.keyLine).second) {
      onProblem({entry.place.file, setting.keyLine, *wrongKey});
    }
    auto wrong = wrongKey ? std::nullopt : problemOf(setting);
    if (!wrongKey && !wrong && isOutput(setting) && !outputs.insert(setting.value).second) {
      wrong = fmt::format("{}: {} is written by another option, too", setting.key, setting.value);
    }
    if (wrong) {
      onProblem({entry.place.file, setting.valueLine, *wrong});
    } else if (setting.key == nameKey) {
      noteName(setting.value, setting.valueLine);
    }
  }
  for (const char* const key : {nameKey, inputKey}) {
    if (!keys.contains(key)) {
      onProblem({entry.place, std::string(key) + " is missing"});
    }
  }
}

std::optional<std::string> RecordingRules::problemOf(const Setting& setting) {
  if (setting.value.empty()) {
    return setting.key + " is empty";
  }
  if (setting.key == nameKey) {
    return problemOfName(setting.value);
  }
  if (setting.key == inputKey || setting.key == truthKey) {
    return problemOfFile(setting.value);
  }
  const OptionKind& kind = m_options.at(setting.key);
  if (setting.value == kind.noFile) {
    return std::nullopt;
  }
  const auto wrong = kind.reads    ? problemOfFile(setting.value)
                     : kind.writes ? problemOfOutput(setting.key, setting.value)
                                   : std::nullopt;
  return wrong ? wrong : problemOfOption(kind, setting);
}

std::optional<std::string> RecordingRules::problemOfFile(const std::string& file) const {
  const fs::path path = fs::path(m_manifestFolder) / file;
  if (::access(path.c_str(), R_OK) != 0) {
    return fmt::format("{}: {}", file, systemProblem("cannot be read"));
  }
  std::error_code unknown;
  const fs::path place = fs::weakly_canonical(path, unknown);
  if (isWithin(place, m_results)) {
    return file + " lies in the folder of the results";
  }
  if (isWithin(m_results, place)) {  // which would change with every result
    return file + " holds the folder of the results";
  }
  return std::nullopt;
}

std::optional<std::string> RecordingRules::problemOfOption(const OptionKind& kind,
                                                           const Setting& setting) {
  if (kind.isFlag) {
    const bool isGood = setting.value == "true" || setting.value == "false";
    return isGood ? std::nullopt : std::optional(setting.key + ": true or false is expected");
  }
  std::string& good = m_good[setting.key];
  if (setting.value == good) {
    return std::nullopt;  // as most values of a table are
  }
  auto wrong = m_check("--" + setting.key + "=" + setting.value);
  good = wrong ? good : setting.value;
  return wrong;
}

void RecordingRules::noteName(const std::string& name, std::uint64_t line) {
  const QByteArray folded = QString::fromStdString(name).toCaseFolded().toUtf8();
  const QByteArray hash = QCryptographicHash::hash(folded, QCryptographicHash::Md5);
  NameMark mark;
  std::memcpy(&mark.high, hash.constData(), sizeof mark.high);
  std::memcpy(&mark.low, hash.constData() + sizeof mark.high, sizeof mark.low);
  mark.line = line;
  m_names.push_back(mark);
}

void RecordingRules::checkNames(const ProblemHandler& onProblem) {
  const auto order = [](const NameMark& mark) { return std::tie(mark.high, mark.low, mark.line); };
  std::sort(m_names.begin(), m_names.end(),
            [&](const NameMark& a, const NameMark& b) { return order(a) < order(b); });
  for (std::size_t i = 1; i < m_names.size(); ++i) {
    if (m_names[i].high == m_names[i - 1].high && m_names[i].low == m_names[i - 1].low) {
      onProblem({m_manifest, m_names[i].line,
                 fmt::format("the name is that of line {}, or differs in capitals only",
                             m_names[i - 1].line)});
    }
  }
  m_names = {};
}

Recording RecordingRules::recordingOf(const ManifestEntry& entry) const {
  Recording recording;
  recording.place = entry.place;
  for (const Setting& setting : entry.settings) {
    if (setting.key == nameKey) {
      recording.name = setting.value;
    } else if (setting.key == inputKey) {
      recording.input = setting.value;
    } else if (setting.key == truthKey) {
      recording.truth = setting.value;
    } else if (isKnown(setting)) {
      const OptionKind& kind = m_options.at(setting.key);
      if (!kind.isFlag || setting.value == "true") {
        recording.settings.push_back({kind, setting.value});
      }
    }
  }
  return recording;
}

}  // namespace grouptracker
