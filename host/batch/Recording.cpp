#include "host/batch/Recording.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace grouptracker {

/// Names become folders, which others see on systems of theirs.
std::optional<std::string> problemOfName(const std::string& name) {
  constexpr std::string_view allName = "all";  // of the summary's last row
  constexpr std::size_t longest = 120;         // bytes; file systems take 255, with machine and key
  const auto isControl = [](char letter) { return static_cast<unsigned char>(letter) < ' '; };
  if (name.size() > longest || name.front() == '.' || name.find('/') != std::string::npos ||
      std::any_of(name.begin(), name.end(), isControl)) {
    return fmt::format("name: {} cannot be the name of a folder", name);
  }
  return name == allName ? std::optional(fmt::format("name: {} is the summary's last row", name))
                         : std::nullopt;
}

std::vector<std::string> Recording::filesRead() const {
  std::vector<std::string> files{input};
  if (!truth.empty()) {
    files.push_back(truth);
  }
  for (const Setting& setting : settings) {
    if (setting.kind.reads && setting.isFile()) {
      files.push_back(setting.value);
    }
  }
  return files;
}

std::vector<std::string> Recording::options(const std::string& folder) const {
  std::vector<std::string> options;
  for (const Setting& setting : settings) {
    const bool isPlaced = setting.kind.writes && setting.isFile();
    options.push_back("--" + setting.kind.name);
    if (!setting.kind.isFlag) {
      options.back() += "=" + (isPlaced ? folder + "/" + setting.value : setting.value);
    }
  }
  return options;
}

}  // namespace grouptracker
