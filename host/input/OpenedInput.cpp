#include "host/input/OpenedInput.h"

#include "host/base/InputError.h"
#include "host/camera/BoxLifter.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/input/CameraFromPeople.h"
#include "host/people/TrackAssembler.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

constexpr double shortest = 0.6;           // m; children count
constexpr double tallest = 3.0;            // m; tall boxes do, too
constexpr double clearlyGood = 0.8;        // of all boxes
constexpr std::size_t mostLooks = 1000;    // boxes
constexpr std::size_t fewestToJudge = 20;  // boxes

bool isHuman(const kelAbstractDataCalibration& camera, const cv::Rect2d& box) {
  const auto foot = liftFoot(camera, box);
  const auto body = foot ? liftBox(camera, box, *foot) : std::nullopt;
  const double height = body ? std::abs(static_cast<double>(body->b2) - body->b5) : 0.0;
  return height > shortest && height < tallest;
}

double humanShare(const kelAbstractDataCalibration& camera, const std::vector<cv::Rect2d>& boxes) {
  const auto count = std::count_if(boxes.begin(), boxes.end(), [&camera](const cv::Rect2d& box) {
    return isHuman(camera, box);
  });
  return static_cast<double>(count) / static_cast<double>(boxes.size());
}

/// Whether a homography shows people of human size, tried on their boxes: when most are not, and
/// would be with column and row exchanged, or not even then, says so. Positions tell nothing.
/// `homography` takes (column, row, 1). None where all is well.
std::optional<std::string> homographyDoubt(ObservationTable& people, const cv::Matx33d& homography,
                                           const std::optional<cv::Size>& imageSize) {
  std::vector<cv::Rect2d> boxes;
  cv::Point2d farthest;
  people.visit([&](const ObservationRow& row) {
    if (const auto& box = row.observation.box2D) {
      farthest = {std::max(farthest.x, box->x + box->width),
                  std::max(farthest.y, box->y + box->height)};
      if (boxes.size() < mostLooks) {
        boxes.push_back(*box);
      }
    }
  });
  if (boxes.size() < fewestToJudge) {
    return std::nullopt;
  }
  const cv::Matx33d exchange(0.0, 1.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0);
  const double share = humanShare(*cameraOf(homography, imageSize, farthest), boxes);
  const double exchanged = humanShare(*cameraOf(homography * exchange, imageSize, farthest), boxes);
  if (share >= 0.5) {
    return std::nullopt;
  }
  if (exchanged > clearlyGood) {
    return fmt::format(
        "through the homography {:.0f} % of the people are of human size, with column and row "
        "exchanged {:.0f} %: see --homography-order",
        100.0 * share, 100.0 * exchanged);
  }
  return fmt::format(
      "through the homography {:.0f} % of the people are of human size: does it belong to another "
      "view, or to other units?",
      100.0 * share);
}

/// What the observations say about the view.
struct View {
  cv::Point2d farthest;  ///< largest column and row of a box, pixels
  bool hasPositions = false;
  bool hasBoxesOnly = false;
};

View viewOf(ObservationTable& observations) {
  View view;
  observations.visit([&](const ObservationRow& row) {
    const Observation& seen = row.observation;
    view.hasPositions = view.hasPositions || seen.position;
    view.hasBoxesOnly = view.hasBoxesOnly || !seen.position;
    if (seen.box2D) {
      view.farthest.x = std::max(view.farthest.x, seen.box2D->x + seen.box2D->width);
      view.farthest.y = std::max(view.farthest.y, seen.box2D->y + seen.box2D->height);
    }
  });
  return view;
}

/// The frames of an input with the times that a rate gives them.
class FramesAtRate : public FrameSource {
 public:
  FramesAtRate(std::unique_ptr<FrameSource> source, const FrameRate& rate)
      : m_source(std::move(source)), m_rate(rate) {}

  bool next(InputFrame& frame) override {
    if (!m_source->next(frame)) {
      return false;
    }
    frame.time = m_rate.timeOf(frame.number, frame.time);
    return true;
  }
  std::optional<std::uint64_t> totalFrames() override { return m_source->totalFrames(); }

 private:
  std::unique_ptr<FrameSource> m_source;
  FrameRate m_rate;
};

}  // namespace

QSharedPointer<kelAbstractDataCalibration> cameraOf(const cv::Matx33d& homography,
                                                    const std::optional<cv::Size>& imageSize,
                                                    const cv::Point2d& farthest) {
  const cv::Size size = imageSize.value_or(guessImageSize(farthest));
  return QSharedPointer<GroundPlaneCalibration>::create(homography,
                                                        estimateCameraPosition(homography, size));
}

void assembleFrames(std::unique_ptr<ObservationTable> observations, const InputOptions& options,
                    OpenedInput& input) {
  const bool isInMemory = observations->isInMemory();
  auto frames = std::make_unique<TrackAssembler>(
      std::move(observations), input.calibration,
      options.wantsPlacesOnly ? withoutLinks : options.links, rateOf(options.rate, input));
  if (isInMemory) {
    input.relink = [assembler = frames.get()](const LinkOptions& other) {
      assembler->relink(other);
    };
  }
  input.frames = std::move(frames);
}

void assembleInput(std::unique_ptr<ObservationTable> observations, const InputOptions& options,
                   OpenedInput& input) {
  input.calibration = options.calibration;
  if (options.imageSize) {
    input.imageSize = options.imageSize;
  }
  if (!input.calibration) {
    const View view = viewOf(*observations);
    if (options.homography) {
      input.calibration = cameraOf(*options.homography, input.imageSize, view.farthest);
      const auto doubt = homographyDoubt(*observations, *options.homography, input.imageSize);
      if (doubt) {
        input.warnings.push_back(*doubt);
      }
    } else if (view.hasBoxesOnly) {
      if (view.hasPositions) {
        throw InputError(input.files.front(),
                         "some people have image boxes only, for which --calibration is needed");
      }
      estimateCamera(peopleBoxes(*observations), input);
    }
  }
  assembleFrames(std::move(observations), options, input);
}

void giveTimes(const std::optional<double>& wishedRate, OpenedInput& input) {
  if (const auto rate = rateOf(wishedRate, input)) {
    input.rate = rate->perSecond;
    input.frames = std::make_unique<FramesAtRate>(std::move(input.frames), *rate);
  }
}

std::optional<FrameRate> rateOf(const std::optional<double>& wished, const OpenedInput& input) {
  const std::optional<double> rate = wished ? wished : input.rate;
  return rate ? std::optional(FrameRate{*rate, wished && !input.keepsTimes}) : std::nullopt;
}

void openRecording(TrackRecording recording, const InputOptions& options, OpenedInput& input) {
  input.rate = recording.rate;
  if (!recording.note.empty()) {
    input.notes.push_back(recording.note);
  }
  assembleInput(std::move(recording.people), options, input);
}

}  // namespace grouptracker
