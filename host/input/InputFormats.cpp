#include "InputFormats.h"

#include "InputError.h"
#include "SceneReader.h"
#include "TrajectoryFolder.h"

#include <array>
#include <filesystem>

namespace {

struct InputFormat {
  const char* name;
  bool (*recognises)(const std::string& path);
  OpenedInput (*open)(const std::string& path, const InputOptions& options);
};

bool isScene(const std::string& path) {
  return path == "-" || std::filesystem::path(path).extension() == ".jsonl";
}

OpenedInput openScene(const std::string& path, const InputOptions& options) {
  return {std::make_unique<SceneReader>(path, options.calibration, options.wakeDescriptor),
          options.calibration,
          {path}};
}

const std::array<InputFormat, 2> formats{{
    {"a scene file *.jsonl, or - for a scene on standard input", isScene, openScene},
    {"a folder with obsmat.txt and H.txt", isTrajectoryFolder, openTrajectoryFolder},
}};

}  // namespace

OpenedInput openInput(const std::string& path, const InputOptions& options) {
  for (const InputFormat& format : formats) {
    if (format.recognises(path)) {
      return format.open(path, options);
    }
  }
  if (!std::filesystem::exists(path)) {
    throw InputError(path, "there is no such file or folder");
  }
  std::string expected;
  for (const InputFormat& format : formats) {
    expected += std::string(expected.empty() ? "" : "; ") + format.name;
  }
  throw InputError(path, "not an input; expected is " + expected);
}
