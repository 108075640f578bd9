#include "host/input/InputFormats.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/camera/CalibrationReader.h"
#include "host/input/ArrivingInput.h"
#include "host/input/CameraFromPeople.h"
#include "host/input/CvmlReader.h"
#include "host/input/InputImages.h"
#include "host/input/MotReader.h"
#include "host/input/MotSequence.h"
#include "host/input/ObsmatReader.h"
#include "host/input/OpenedInput.h"
#include "host/input/SceneReader.h"
#include "host/input/TableReader.h"
#include "host/input/TrajectoryDatabase.h"
#include "host/live/PeopleMessage.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

struct InputFormat {
  const char* key;  ///< by which the user names it
  const char* description;
  bool (*recognises)(const std::string& path);
  OpenedInput (*open)(const std::string& path, const InputOptions& options);
  /// Null for a format without image boxes.
  PeopleView (*view)(const std::string& path, const InputOptions& options);
};

/// Whether the input can be read more than once.
bool isFile(const std::string& path) {
  std::error_code unreadable;
  return fs::is_regular_file(path, unreadable);
}

/// The first filled lines of a file as far as they tell its format; none of a folder or pipe, from
/// which nothing may be taken away.
std::vector<std::string> headOf(const std::string& path) {
  constexpr std::size_t lineCount = 10;
  constexpr std::size_t longestLine = 1024 * 1024;  // bytes
  std::vector<std::string> head;
  if (!isFile(path)) {
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

/// A file of people messages; what arrives is not looked at.
bool isMessages(const std::string& path) {
  const auto head = headOf(path);
  return !head.empty() && isPeopleMessage(head.front(), MessageMap());
}

OpenedInput openScene(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  input.files = {path};
  input.imageSize = options.imageSize;
  input.calibration = options.calibration;
  if (!input.calibration && options.homography) {
    input.calibration = cameraOf(*options.homography, options.imageSize,
                                 isFile(path) ? farthestCorner(peopleBoxes(path)) : cv::Point2d());
  } else if (!input.calibration && isFile(path)) {
    input.calibration = readSceneCalibration(path);
    if (!input.calibration && needsCamera(path)) {
      estimateCamera(peopleBoxes(path), input);
    }
  }
  auto scene = std::make_unique<SceneReader>(path, input.calibration);
  if (options.wantsPlacesOnly) {
    scene->readPlacesOnly();
  }
  input.planActors = [reader = scene.get()] { reader->planActors(); };
  input.frames = std::move(scene);
  input.hasOwnLinks = true;
  return input;
}

bool isMot(const std::string& path) {
  if (MotSequence::isOne(path)) {
    return true;
  }
  const auto head = headOf(path);
  return !head.empty() && isMotLine(head.front());
}

/// The people of a file or sequence folder; sets the files and the image size.
std::unique_ptr<ObservationTable> readMotInput(const std::string& path, const InputOptions& options,
                                               OpenedInput& input) {
  if (!fs::is_directory(path)) {
    input.files = {path};
    auto people = readMot(path, options.mot, options.onProblem);
    people->finish();
    return people;
  }
  const MotSequence sequence(path);
  input.files = {sequence.trackFile(), sequence.infoFile()};
  input.imageSize = sequence.info().imageSize;
  input.rate = sequence.info().rate;
  if (const auto missing = sequence.missingImages(); missing && options.images.empty()) {
    input.warnings.push_back(*missing);
  }
  return sequence.read(options.mot, options.onProblem);
}

bool isObsmat(const std::string& path) {
  if (isTrajectoryFolder(path)) {
    return true;
  }
  const auto head = headOf(path);
  return !head.empty() && isObsmatLine(head.front());
}

bool isTableFile(const std::string& path) {
  return isTable(headOf(path));
}

OpenedInput openMot(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  auto people = readMotInput(path, options, input);
  assembleInput(std::move(people), options, input);
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

PeopleView viewScene(const std::string& path, const InputOptions& options) {
  if (!isFile(path)) {
    throw InputError(path, "a camera can be estimated from a file only");
  }
  return {peopleBoxes(path, options.frames), std::nullopt};
}

PeopleView viewMot(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  const auto people = readMotInput(path, options, input);
  return {peopleBoxes(*people, options.frames), input.imageSize};
}

PeopleView viewCvml(const std::string& path, const InputOptions& options) {
  return {peopleBoxes(*readCvml(path, options.onProblem), options.frames), std::nullopt};
}

const std::array<InputFormat, 7> formats{{
    {"people", "people messages, one JSON object a line and frame", isMessages, openArriving,
     nullptr},
    {"scene", "a scene file *.jsonl, or - for a scene on standard input", isScene, openScene,
     viewScene},
    {"sqlite", "an SQLite file of a pedestrian simulation", isTrajectoryDatabase,
     openTrajectoryDatabase, nullptr},
    {"obsmat", "obsmat.txt, or a folder with it and H.txt", isObsmat, openTrajectory, nullptr},
    {"mot", "a MOTChallenge file, or a sequence folder with seqinfo.ini", isMot, openMot, viewMot},
    {"cvml", "an XML file with boxes like that of the PETS recordings", isCvml, openCvml, viewCvml},
    {"table", "a text with columns named frame, id, x and y (or with --columns)", isTableFile,
     openTable, nullptr},
}};

/// The files of a folder that are inputs themselves; not texts, of which any may be a table.
std::string inputsIn(const std::string& folder) {
  std::set<std::string> names;
  std::error_code unreadable;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, unreadable)) {
    const bool isInput = isFile(entry.path()) &&
                         std::any_of(formats.begin(), formats.end(), [&](const auto& format) {
                           return format.open != openTable && format.recognises(entry.path());
                         });
    isInput ? void(names.insert(entry.path().filename())) : void();
  }
  std::string list;
  for (const std::string& name : names) {
    list += (list.empty() ? "" : ", ") + name;
  }
  return list;
}

/// Why no format takes an input.
InputError strangeInput(const std::string& path) {
  std::error_code unreadable;
  if (!fs::exists(path, unreadable)) {
    return {path, "there is no such file or folder"};
  }
  if (fs::is_regular_file(path, unreadable) && fs::is_empty(path, unreadable)) {
    return {path, "is empty"};
  }
  const std::string within = inputsIn(path);
  if (!within.empty()) {
    return {path, "not an input itself, but in this folder there is " + within};
  }
  std::string expected;
  for (const InputFormat& format : formats) {
    expected += std::string(expected.empty() ? "" : "; ") + format.description;
  }
  return {path, "not an input; expected is " + expected};
}

/// The format that the user chose, or else the one that takes the input as its own.
const InputFormat& formatOf(const std::string& path, const std::string& key) {
  for (const InputFormat& format : formats) {
    if (key.empty() ? format.recognises(path) : key == format.key) {
      return format;
    }
  }
  throw strangeInput(path);
}

/// The format's name, as the user says it or shows by naming columns; empty when nobody said.
std::string keyOf(const std::string& path, const InputOptions& options) {
  if (options.messages.hasMap && options.format.empty()) {
    return "people";
  }
  if (!options.format.empty() || options.table.isEmpty() || !isFile(path)) {
    return options.format;
  }
  return isTrajectoryDatabase(path) ? "sqlite" : "table";
}

}  // namespace

std::vector<std::string> inputFormats() {
  std::vector<std::string> keys;
  keys.reserve(std::size(formats));
  for (const InputFormat& format : formats) {
    keys.emplace_back(format.key);
  }
  return keys;
}

std::vector<std::string> filesWithin(const std::string& path) {
  std::error_code unreadable;
  std::vector<std::string> files;
  if (fs::is_directory(path, unreadable)) {
    for (const char* const name :
         {"obsmat.txt", "H.txt", "seqinfo.ini", "gt/gt.txt", "det/det.txt"}) {
      files.push_back(fs::path(path) / name);
    }
  }
  return files;
}

OpenedInput openInput(const std::string& path, const InputOptions& options) {
  OpenedInput input = arrives(path, options)
                          ? openArriving(path, options)
                          : formatOf(path, keyOf(path, options)).open(path, options);
  if (options.decodesVideo && options.images != noImages && !options.allowsOutsideImages) {
    const fs::path folder = path == "-" ? fs::path() : fs::path(path).parent_path();
    std::error_code unreadable;
    input.frames = std::make_unique<ImagesWithin>(
        std::move(input.frames), fs::is_directory(path, unreadable) ? fs::path(path) : folder);
  }
  input.frames = withImages(std::move(input.frames), options.images, options.decodesVideo);
  giveTimes(options.rate, input);
  if (!options.frames.isWhole()) {
    input.frames =
        std::make_unique<FramesWithin>(std::move(input.frames), options.frames, options.onWarning);
    input.planActors = {};
  }
  return input;
}

std::optional<double> secondsBetweenFrames(const std::string& path, InputOptions options) {
  std::error_code unreadable;
  if (!isFile(path) && !fs::is_directory(path, unreadable)) {
    // What is taken from a pipe to look at it would be missing.
    return options.rate ? std::optional(1.0 / *options.rate) : std::nullopt;
  }
  options.images = noImages;
  options.decodesVideo = false;
  try {
    const OpenedInput input = openInput(path, options);
    InputFrame first;
    InputFrame second;
    const bool areThere = input.frames->next(first) && input.frames->next(second);
    return areThere && first.time && second.time ? std::optional(*second.time - *first.time)
                                                 : std::nullopt;
  } catch (const InputError&) {
    return std::nullopt;  // the run itself will tell
  }
}

PeopleView readPeopleView(const std::string& path, const InputOptions& options) {
  const InputFormat& format = formatOf(path, keyOf(path, options));
  if (format.view == nullptr) {
    throw InputError(path, "has no image boxes, from which a camera could be estimated");
  }
  return format.view(path, options);
}

}  // namespace grouptracker
