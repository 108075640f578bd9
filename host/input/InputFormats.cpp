#include "InputFormats.h"

#include "CvmlReader.h"
#include "InputError.h"
#include "InputFile.h"
#include "LineReader.h"
#include "MotReader.h"
#include "MotSequence.h"
#include "ObservationInput.h"
#include "SceneReader.h"
#include "TrajectoryFolder.h"

#include <array>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct InputFormat {
  const char* key;  ///< by which the user names it
  const char* description;
  bool (*recognises)(const std::string& path);
  OpenedInput (*open)(const std::string& path, const InputOptions& options);
};

/// The first filled lines of a file as far as they tell its format; none of a folder or pipe, from
/// which nothing may be taken away.
std::vector<std::string> headOf(const std::string& path) {
  constexpr std::size_t lineCount = 10;
  constexpr std::size_t longestLine = 64 * 1024;  // bytes
  std::vector<std::string> head;
  std::error_code unreadable;
  if (!fs::is_regular_file(path, unreadable)) {
    return head;
  }
  try {
    InputFile file(path);
    LineReader lines(file.stream(), path, longestLine);
    while (head.size() < lineCount && lines.nextFilled()) {
      head.push_back(lines.line().substr(lines.line().find_first_not_of(" \t")));
    }
  } catch (const InputError&) {
    // What is too long to tell a format or cannot be read is reported by the reader.
  }
  return head;
}

bool isScene(const std::string& path) {
  if (path == "-" || fs::path(path).extension() == ".jsonl") {
    return true;
  }
  const auto head = headOf(path);
  return !head.empty() && head.front().starts_with('{');
}

OpenedInput openScene(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  input.files = {path};
  input.imageSize = options.imageSize;
  input.calibration = options.calibration;
  if (!input.calibration && options.homography) {
    input.calibration = cameraOf(*options.homography, options.imageSize, {});
  }
  input.frames = std::make_unique<SceneReader>(path, input.calibration, options.wakeDescriptor);
  return input;
}

bool isMot(const std::string& path) {
  if (MotSequence::isOne(path)) {
    return true;
  }
  const auto head = headOf(path);
  return !head.empty() && isMotLine(head.front());
}

OpenedInput openMot(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  if (!fs::is_directory(path)) {
    auto people = readMot(path, options.mot, options.onProblem);
    people->finish();
    input.files = {path};
    assembleInput(std::move(people), options, input);
    return input;
  }
  const MotSequence sequence(path);
  input.files = {sequence.trackFile(), sequence.infoFile()};
  input.imageSize = sequence.info().imageSize;
  assembleInput(sequence.read(options.mot, options.onProblem), options, input);
  return input;
}

bool isCvml(const std::string& path) {
  for (const std::string& line : headOf(path)) {
    if (line.find("<dataset") != std::string::npos) {
      return true;
    }
  }
  return false;
}

OpenedInput openCvml(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  input.files = {path};
  assembleInput(readCvml(path, options.onProblem), options, input);
  return input;
}

const std::array<InputFormat, 4> formats{{
    {"scene", "a scene file *.jsonl, or - for a scene on standard input", isScene, openScene},
    {"obsmat", "a folder with obsmat.txt and H.txt", isTrajectoryFolder, openTrajectoryFolder},
    {"mot", "a MOTChallenge file, or a sequence folder with seqinfo.ini", isMot, openMot},
    {"cvml", "an XML file with boxes like that of the PETS recordings", isCvml, openCvml},
}};

const InputFormat* findFormat(const std::string& path, const std::string& key) {
  for (const InputFormat& format : formats) {
    if (key.empty() ? format.recognises(path) : key == format.key) {
      return &format;
    }
  }
  return nullptr;
}

}  // namespace

std::vector<std::string> inputFormats() {
  std::vector<std::string> keys;
  for (const InputFormat& format : formats) {
    keys.emplace_back(format.key);
  }
  return keys;
}

OpenedInput openInput(const std::string& path, const InputOptions& options) {
  if (const InputFormat* const format = findFormat(path, options.format)) {
    return format->open(path, options);
  }
  std::error_code unreadable;
  if (!fs::exists(path, unreadable)) {
    throw InputError(path, "there is no such file or folder");
  }
  std::string expected;
  for (const InputFormat& format : formats) {
    expected += std::string(expected.empty() ? "" : "; ") + format.description;
  }
  throw InputError(path, "not an input; expected is " + expected);
}
