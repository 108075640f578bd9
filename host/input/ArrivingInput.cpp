#include "host/input/ArrivingInput.h"

#include "host/base/InputError.h"
#include "host/base/LineReader.h"
#include "host/base/PersonNames.h"
#include "host/input/MotMessages.h"
#include "host/input/MotReader.h"
#include "host/input/SceneReader.h"
#include "host/live/ArrivingPeople.h"
#include "host/live/ArrivingText.h"
#include "host/live/MqttArrival.h"
#include "host/people/TrackAssembler.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t rememberedNames = 100'000;  // of people; a station has them in a day

bool isPipe(const std::string& path) {
  std::error_code unreadable;
  const fs::file_status status = fs::status(path, unreadable);
  return path == "-" ||
         (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status));
}

bool isSceneLine(const std::string& line) {
  MessageMap scene;
  scene.people = "/mobiles";
  return isPeopleMessage(line, scene);
}

/// The frames of an input that arrives; what it is, its first line tells.
class ArrivingFrames : public FrameSource {
 public:
  ArrivingFrames(std::shared_ptr<ArrivingText> text, InputOptions options,
                 QSharedPointer<kelAbstractDataCalibration> camera)
      : m_text(std::move(text)),
        m_unknown(m_text->stream(), m_text->name()),
        m_options(std::move(options)),
        m_camera(std::move(camera)) {}

  bool next(InputFrame& frame) override {
    if (!m_frames) {
      m_frames = open();
    }
    for (;;) {
      try {
        return m_frames->next(frame);
      } catch (const InputError& problem) {
        if (m_text->isBroken()) {
          throw;  // there is no next line behind it
        }
        m_options.onProblem(problem);  // throws it, unless what is wrong is passed over
      }
    }
  }

 private:
  std::string format() {
    if (!m_options.format.empty()) {
      return m_options.format;
    }
    if (m_options.messages.hasMap) {
      return "people";
    }
    for (;;) {
      const std::string line = m_text->firstLine();
      if (isMotLine(line)) {
        return "mot";
      }
      if (isPeopleMessage(line, m_options.messages.map)) {
        return "people";
      }
      if (!m_options.messages.isTopic || isSceneLine(line)) {
        return "scene";
      }
      passOver();
    }
  }

  /// A topic goes on behind a damaged message, which says nothing of the next.
  void passOver() {
    m_unknown.nextFilled();
    m_options.onProblem(m_unknown.error(
        "is neither a people message nor a line of a scene or of the MOTChallenge (--format)"));
  }

  std::unique_ptr<FrameSource> open() {
    const std::string what = format();
    if (what == "scene") {
      auto scene =
          std::make_unique<SceneReader>(m_text->stream(), m_text->name(), fs::path(), m_camera);
      if (m_options.messages.isTopic) {
        scene->surviveLosses();
        scene->limitPeople(m_options.messages.limits.people);
      }
      return scene;
    }
    std::unique_ptr<MessageReader> reader;
    if (what == "people") {
      reader =
          std::make_unique<JsonMessages>(m_text->stream(), m_text->name(), m_options.messages.map,
                                         m_camera != nullptr, m_options.messages.limits);
    } else {
      reader = std::make_unique<MotMessages>(m_text->stream(), m_text->name(), m_options.mot,
                                             m_camera != nullptr, m_options.messages.isTopic,
                                             m_options.messages.limits.people);
    }
    const ArrivalOptions options{m_options.messages.maxLateness, m_options.messages.isLive,
                                 m_options.onProblem, m_options.onWarning,
                                 m_options.messages.watch};
    const auto rate =
        m_options.rate ? std::optional(FrameRate{*m_options.rate, false}) : std::nullopt;
    return std::make_unique<TrackAssembler>(
        std::make_unique<ArrivingPeople>(m_text, std::move(reader), options), m_camera,
        m_options.links, rate);
  }

  std::shared_ptr<ArrivingText> m_text;
  LineReader m_unknown;  ///< the lines before the first that tells the format
  InputOptions m_options;
  QSharedPointer<kelAbstractDataCalibration> m_camera;
  std::unique_ptr<FrameSource> m_frames;  ///< null before the first line
};

std::unique_ptr<ByteArrival> openArrival(const std::string& path, const InputOptions& options) {
  if (MqttAddress::isOne(path)) {
    return std::make_unique<MqttArrival>(MqttAddress::parse(path), options.messages.broker,
                                         options.onWarning, options.messages.watchArrival);
  }
  return std::make_unique<FileArrival>(path);
}

/// Boxes of which nobody knows how the camera sees them can only be taken as a whole, as their
/// people show it.
bool needsAll(const InputOptions& options, const OpenedInput& input, ArrivingText& text) {
  return options.format == "mot" && !input.calibration && !holdsPosition(text.firstLine());
}

}  // namespace

bool arrives(const std::string& path, const InputOptions& options) {
  const std::string& format = options.format;
  const bool canArrive =
      format.empty() || format == "people" || format == "scene" || format == "mot";
  const bool isOpen = isPipe(path) || MqttAddress::isOne(path);
  return format == "people" || (isOpen && canArrive && options.table.isEmpty());
}

OpenedInput openArriving(const std::string& path, const InputOptions& given) {
  InputOptions options = given;
  options.messages.isTopic = MqttAddress::isOne(path);
  options.messages.isLive = options.messages.isTopic || isPipe(path);
  OpenedInput input;
  input.files = {path};
  input.imageSize = options.imageSize;
  input.calibration = options.calibration;
  if (!input.calibration && options.homography) {
    input.calibration = cameraOf(*options.homography, options.imageSize, cv::Point2d());
  }
  const auto text = std::make_shared<ArrivingText>(openArrival(path, options));
  if (!options.messages.isTopic && needsAll(options, input, *text)) {
    auto people = readMot(text->stream(), text->name(), options.mot, options.onProblem);
    people->finish();
    assembleInput(std::move(people), options, input);
    return input;
  }
  input.isArriving = true;
  if (options.messages.isLive) {
    PersonNames::ofProgram().remember(rememberedNames);
  }
  input.keepsTimes = true;
  input.frames = std::make_unique<ArrivingFrames>(text, options, input.calibration);
  return input;
}

}  // namespace grouptracker
