#pragma once

#include "host/base/InputError.h"

#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// What is known of an option of `run` when it is given in a manifest.
struct OptionKind {
  std::string name;  ///< without dashes
  bool isFlag = false;
  bool reads = false;   ///< whether its value is a file or folder that is read
  bool writes = false;  ///< whether its value is a file or folder that is written
  std::string noFile;   ///< the value that is no file, such as "none"; empty without one
};

/// One recording of a manifest. Files that are read are named as they are seen from the manifest's
/// folder; those that are written lie in the recording's own folder of results.
struct Recording {
  struct Setting {
    OptionKind kind;
    std::string value;  ///< of a flag "true"

    bool isFile() const { return value != kind.noFile; }
  };

  std::string name;
  std::string input;
  std::string truth;  ///< empty without one
  std::vector<Setting> settings;
  InputPlace place;

  /// Everything that it reads.
  std::vector<std::string> filesRead() const;
  /// The options of `run`, as the command line has them; files are written to `folder`.
  std::vector<std::string> options(const std::string& folder) const;
};

/// Why a recording cannot be called so; none when it can.
std::optional<std::string> problemOfName(const std::string& name);

}  // namespace grouptracker
