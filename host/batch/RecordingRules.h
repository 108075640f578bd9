#pragma once

#include "host/batch/ManifestReader.h"
#include "host/batch/Recording.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

/// Makes recordings of what a manifest says, and knows what it may say: "name", "input", "truth"
/// and the options of `run` but those that the batch gives itself or that have no sense in it.
class RecordingRules {
 public:
  /// Tells what is wrong with an option of a command line, `--rate=x`; none when it is good.
  using Check = std::function<std::optional<std::string>(const std::string& option)>;

  /// `manifest` and `results` are the manifest's file and the folder of all results.
  RecordingRules(const std::vector<OptionKind>& options, Check check, const std::string& manifest,
                 const std::string& results);

  /// Everything that can be known to be wrong with a recording before it runs. A problem with a key
  /// of a table is told once, and a name that another recording has by `checkNames`.
  void check(const ManifestEntry& entry, const ProblemHandler& onProblem);
  /// Tells which of the names that were checked collide. Takes 24 bytes for each of them.
  void checkNames(const ProblemHandler& onProblem);
  /// The recording of an entry in which nothing is wrong.
  Recording recordingOf(const ManifestEntry& entry) const;

 private:
  using Setting = ManifestEntry::Setting;

  /// A name of which only so much is kept that no other is taken for it.
  struct NameMark {
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    std::uint64_t line = 0;
  };

  bool isKnown(const Setting& setting) const;
  bool isOutput(const Setting& setting) const;
  std::optional<std::string> problemOfKey(const std::string& key) const;
  std::optional<std::string> problemOf(const Setting& setting);
  std::optional<std::string> problemOfFile(const std::string& file) const;
  std::optional<std::string> problemOfOption(const OptionKind& kind, const Setting& setting);
  void noteName(const std::string& name, std::uint64_t line);

  std::map<std::string, OptionKind> m_options;
  Check m_check;
  std::string m_manifest;
  std::string m_manifestFolder;
  std::string m_results;                      ///< canonical
  std::map<std::string, std::string> m_good;  ///< the last good value of each option
  std::set<std::pair<std::string, std::uint64_t>> m_toldKeys;
  std::vector<NameMark> m_names;
};

}  // namespace grouptracker
