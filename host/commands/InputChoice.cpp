#include "host/commands/InputChoice.h"

#include "host/base/InputError.h"
#include "host/base/TextNumbers.h"
#include "host/camera/CalibrationReader.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/input/InputFormats.h"
#include "host/input/InputImages.h"
#include "host/people/LinkOptions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <string_view>
#include <utility>
#include <variant>

namespace grouptracker {

namespace {

const char* const columnFirst = "colrow";
const char* const rowFirst = "rowcol";

bool readWhole(std::string_view text, int& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number > 0;
}

/// Sizes as people write them: 1920x1080, 1920 X 1080, 1920*1080, 1920:1080, 1920,1080 or 1920
/// 1080.
std::optional<cv::Size> parseSize(std::string_view text) {
  constexpr std::string_view digits = "0123456789";
  const std::string_view begin = text.substr(0, text.find_first_not_of(digits));
  const std::string_view end = text.substr(text.find_last_not_of(digits) + 1);
  std::string between(text.substr(std::min(begin.size(), text.size() - end.size()),
                                  text.size() - std::min(text.size(), begin.size() + end.size())));
  std::erase(between, ' ');
  const std::array<std::string_view, 6> crosses{"x", "X", "*", ":", ",", "\u00D7"};
  const bool isApart = between.empty()
                           ? begin.size() + end.size() < text.size()
                           : std::find(crosses.begin(), crosses.end(), between) != crosses.end();
  cv::Size size;
  const bool isSize = isApart && readWhole(begin, size.width) && readWhole(end, size.height);
  return isSize ? std::optional(size) : std::nullopt;
}

/// A number of pixels as people write it: 50000000, 50M or 8000x6000.
std::optional<std::int64_t> parsePixels(std::string_view text) {
  if (const auto size = parseSize(text)) {
    return std::int64_t{size->width} * size->height;
  }
  constexpr std::array<std::pair<std::string_view, std::int64_t>, 4> factors{
      {{"", 1}, {"k", 1'000}, {"M", 1'000'000}, {"G", 1'000'000'000}}};
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  std::int64_t number = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  text.remove_prefix(rest - text.data());
  const auto factor = std::find_if(factors.begin(), factors.end(),
                                   [text](const auto& each) { return each.first == text; });
  if (error != std::errc() || number <= 0 || factor == factors.end() ||
      number > most / factor->second) {
    return std::nullopt;
  }
  return number * factor->second;
}

void declareFrames(Options& command, InputChoice& choice) {
  const auto take = [&choice](const std::string& text) {
    const auto range = FrameRange::parse(text);
    choice.frames = range.value_or(choice.frames);
    return range.has_value();
  };
  command
      .addParsed("--frames", take, "A:B, A: or :B is expected, with A <= B",
                 "only the frames from A to B, by the input's own numbers")
      .typeName("A:B");
}

void declareRate(Options& command, InputChoice& choice) {
  const auto take = [&choice](const std::string& text) {
    choice.rate = parseFinite(text);
    return choice.rate && *choice.rate > 0.0;
  };
  command
      .addParsed("--rate", take, "a number above 0 is expected",
                 "frame numbers a second, where the input has no times or wrong ones")
      .typeName("N");
}

void declareTable(Options& command, InputChoice& choice) {
  const auto takeColumns = [&choice](const std::string& text) {
    return choice.table.parseColumns(text);
  };
  command
      .addParsed("--columns", takeColumns,
                 "names such as frame=t,id=ped are expected, or without names in the file what all "
                 "columns hold, such as frame,id,x,y",
                 "which columns of a table are frame (or time, in seconds), id, x and y")
      .typeName("frame=NAME,...");
  const auto takeUnit = [&choice](const std::string& text) {
    constexpr double centimetre = 0.01;
    choice.table.unit = text == "cm" ? centimetre : 1.0;
    return text == "m" || text == "cm";
  };
  command
      .addParsed("--unit", takeUnit, "m or cm is expected",
                 "what places in a table are in (default m, or what its header says)")
      .typeName("m|cm");
}

void declareMessages(Options& command, InputChoice& choice) {
  constexpr double latest = 60.0;  // seconds
  constexpr int largestCrowd = 100'000;
  command
      .add("--message-map", choice.messageMapFile,
           "where people messages keep time, people, ids and places, as JSON pointers")
      .reads("FILE");
  command
      .add(
          "--max-people", choice.mostPeople,
          "a people message, or frame of MOTChallenge lines that arrive, with more people is wrong")
      .within(1, largestCrowd)
      .typeName("N")
      .showDefault();
  command
      .add("--max-lateness", choice.maxLateness,
           "seconds that a people message may come after those that follow it")
      .within(0.0, latest)
      .typeName("SECONDS")
      .showDefault();
}

void declareCamera(Options& command, InputChoice& choice) {
  command
      .add("--calibration", choice.calibrationFile,
           "camera: OpenCV yml, xml or json; Tsai's model as XML; or a text of 3 x 3 numbers, "
           "the homography from the image to the ground")
      .reads("FILE");
  command
      .add("--homography-order", choice.homographyOrder,
           "what a homography in a text takes: column before row, or row before column "
           "(default colrow)")
      .oneOf({rowFirst, columnFirst});
  const auto takeSize = [&choice](const std::string& text) {
    choice.imageSize = parseSize(text);
    return choice.imageSize.has_value();
  };
  command
      .addParsed("--image-size", takeSize, "WxH is expected, such as 768x576",
                 "width and height of the video's images in pixels, where the input does not say "
                 "them")
      .typeName("WxH");
}

void declareLinks(Options& command, InputChoice& choice) {
  for (const LinkArgument& argument : linkArguments()) {
    std::visit(
        [&](auto member) {
          command
              .add(argument.name, choice.links.*member,
                   std::string("for inputs without links: ") + argument.meaning)
              .notNegative()
              .showDefault();
        },
        argument.member);
  }
}

}  // namespace

std::optional<double> parseFinite(const std::string& text) {
  try {
    return parseNumber(text);
  } catch (const ValueProblem&) {
    return std::nullopt;
  }
}

namespace {

Option addInput(Options& command, InputChoice& choice) {
  return command
      .add("INPUT", choice.input,
           "CSV or other text with columns frame, id, x and y; text of a pedestrian laboratory; "
           "SQLite file of a pedestrian simulation; obsmat.txt or a folder with it; MOTChallenge "
           "file or sequence folder; XML file with boxes; scene file *.jsonl; people "
           "messages; or - (standard input), a pipe or mqtt://HOST/TOPIC with a scene, people "
           "messages or MOTChallenge lines that arrive")
      .reads("PATH");
}

}  // namespace

void declareInput(Options& command, InputChoice& choice) {
  addInput(command, choice).required();
  declareReading(command, choice);
}

void declareOptionalInput(Options& command, InputChoice& choice) {
  addInput(command, choice);
  declareReading(command, choice);
}

void declareReading(Options& command, InputChoice& choice) {
  Options reading = command.under("How the input is read");
  reading
      .add("--format", choice.format,
           "the format of INPUT, if it is not to be recognised by its content")
      .oneOf(inputFormats());
  reading.add("--min-confidence", choice.minConfidence,
              "for MOTChallenge files: boxes of a lower confidence are passed over");
  declareFrames(reading, choice);
  declareRate(reading, choice);
  declareTable(reading, choice);
  declareMessages(reading, choice);
  declareCamera(reading, choice);
  reading
      .add("--images", choice.images,
           "folder with images by sorted name, or a video file, for inputs that name none; none "
           "leaves all images out")
      .reads("FOLDER|VIDEO|none");
  reading.addFlag("--allow-outside-images", choice.allowsOutsideImages,
                  "lets the input name images that lie outside its folder");
  const auto takePixels = [&choice](const std::string& text) {
    const auto pixels = parsePixels(text);
    choice.maxPixels = pixels.value_or(choice.maxPixels);
    return pixels.has_value();
  };
  reading
      .addParsed("--max-pixels", takePixels, "such as 50000000, 50M or 8000x6000 is expected",
                 "images and videos of more pixels are refused before they are decoded (default "
                 "100M)")
      .typeName("N");
  declareLinks(reading, choice);
}

InputOptions inputOptions(const InputChoice& choice) {
  limitPixels(choice.maxPixels);
  InputOptions options;
  options.format = choice.format;
  options.imageSize = choice.imageSize;
  options.links = choice.links;
  options.images = choice.images;
  options.allowsOutsideImages = choice.allowsOutsideImages;
  options.frames = choice.frames;
  options.rate = choice.rate;
  options.table = choice.table;
  options.mot.minConfidence = choice.minConfidence.value_or(options.mot.minConfidence);
  options.messages.limits.people = static_cast<std::size_t>(choice.mostPeople);
  options.messages.maxLateness = choice.maxLateness;
  options.messages.broker = choice.broker;
  if (!choice.messageMapFile.empty()) {
    options.messages.map = MessageMap::read(choice.messageMapFile);
    options.messages.hasMap = true;
  }
  if (choice.calibrationFile.empty()) {
    return options;
  }
  if (isHomographyFile(choice.calibrationFile)) {
    options.homography = readHomography(choice.calibrationFile, choice.homographyOrder == rowFirst
                                                                    ? ImageOrder::rowColumn
                                                                    : ImageOrder::columnRow);
  } else if (!choice.homographyOrder.empty()) {
    throw InputError(choice.calibrationFile, "is no homography, so it has no --homography-order");
  } else {
    options.calibration = readCalibration(choice.calibrationFile);
  }
  return options;
}

}  // namespace grouptracker
