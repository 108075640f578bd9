#include "host/base/InputError.h"
#include "host/base/OutputPlace.h"
#include "host/commands/RunOptions.h"
#include "host/output/RunFile.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

std::string recordingName(const std::string& input) {
  std::error_code ignored;
  const fs::path whole = fs::weakly_canonical(input, ignored);
  return fs::is_directory(whole, ignored) ? whole.filename() : whole.stem();
}

/// Whether a file starts as one that `run --output` wrote; an empty one does, too.
bool holdsGroups(const std::string& path) {
  std::ifstream in(path);
  RunFileReader reader(in, path, RunFilePart::groupings);
  RunStep first;
  try {
    return !reader.next(first) || first.source == GroupSource::evidence;
  } catch (const InputError&) {
    return false;
  }
}

}  // namespace

std::string usualOutput(const std::string& input) {
  // Pipes of the shell lie there, such as those of <(...), under names that nobody chose.
  const bool isNamed = input != "-" && !input.starts_with("/dev/");
  if (!isNamed || recordingName(input).empty()) {
    throw InputError("--output", "a file for the groups is expected, or one for --actors");
  }
  const std::string path = recordingName(input) + ".groups.jsonl";
  std::error_code ignored;
  const fs::file_status place = fs::status(path, ignored);
  if (fs::exists(place) && !(fs::is_regular_file(place) && holdsGroups(path))) {
    throw OutputError(path, "is no groups file, so it is not replaced; --output names another");
  }
  return path;
}

}  // namespace grouptracker
