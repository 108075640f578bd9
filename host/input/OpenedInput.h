#pragma once

#include "host/base/InputError.h"
#include "host/input/FrameRange.h"
#include "host/input/MotReader.h"
#include "host/input/TrackRows.h"
#include "host/live/MessageMap.h"
#include "host/live/MqttArrival.h"
#include "host/live/ReorderBuffer.h"
#include "host/people/InputFrame.h"
#include "host/people/LinkOptions.h"
#include "host/people/ObservationTable.h"

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>
#include <opencv2/core/matx.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// How what arrives is read.
struct MessageChoice {
  MessageMap map;
  bool hasMap = false;  ///< the user gave one, so that the input consists of people messages
  MessageLimits limits;
  double maxLateness = 0.5;  ///< seconds that one may come after those behind it
  BrokerAccess broker;
  bool isTopic = false;  ///< the messages are those of a broker, which never end
  bool isLive = false;   ///< they arrive, from a broker or a pipe
  /// Hears of how orderly messages arrive, whenever that changes; empty when nobody wants to know.
  std::function<void(const ReorderBuffer::Counts&)> watch;
  /// The same of what waits between the broker and the reading, on any thread.
  MqttArrival::Watch watchArrival;
};

/// What the user says about an input beside its name.
struct InputOptions {
  std::string format;                                      ///< empty to recognise it by content
  QSharedPointer<kelAbstractDataCalibration> calibration;  ///< null when none was given
  std::optional<cv::Matx33d> homography;  ///< from column and row to the ground, instead of it
  std::optional<cv::Size> imageSize;      ///< pixels; asked for only when the input does not say
  LinkOptions links;
  MotChoice mot;
  TableChoice table;
  MessageChoice messages;
  std::string images;                ///< a folder, a video or `noImages`; empty for the input's own
  bool allowsOutsideImages = false;  ///< whether it may name images outside its folder
  bool decodesVideo = true;          ///< whether anybody looks at the pictures of a video
  bool wantsPlacesOnly = false;      ///< nobody follows links or lists, so none are made or kept
  FrameRange frames;
  std::optional<double> rate;  ///< frame numbers a second, in place of what the input says
  ProblemHandler onProblem = throwProblem;
  /// Hears of what is hardly meant and shows only while the input is read.
  std::function<void(const std::string&)> onWarning = [](const std::string&) {};
};

/// An input that is ready to be read.
struct OpenedInput {
  std::unique_ptr<FrameSource> frames;
  QSharedPointer<kelAbstractDataCalibration>
      calibration;                    ///< given or the input's own; may be null
  std::vector<std::string> files;     ///< what the input consists of
  std::vector<std::string> notes;     ///< what the user should know about how it is read
  std::vector<std::string> warnings;  ///< what is hardly meant
  std::optional<cv::Size> imageSize;  ///< pixels; none when nobody said
  std::optional<double> rate;         ///< frame numbers a second; none when only frames tell times
  bool isArriving = false;            ///< it is read as it arrives, line by line
  bool keepsTimes = false;            ///< its own times hold, whatever rate the user says
  bool hasOwnLinks = false;           ///< what the user says about links changes nothing
  /// Chooses other links, before the first frame is read; empty for an input that has its own or is
  /// not in memory as a whole.
  std::function<void(const LinkOptions&)> relink;
  /// From the next frame on leaves the actors to be made where frames are used, see `ActorMaker`;
  /// empty for an input that makes them, or that does not hand out every frame.
  std::function<void()> planActors;
};

/// Makes the frames of an input that consists of observations, with the camera that it has by now.
void assembleFrames(std::unique_ptr<ObservationTable> observations, const InputOptions& options,
                    OpenedInput& input);

/// Completes an input that consists of observations: chooses its camera and assembles its frames.
/// The camera is the given one; else that of the given homography, with the camera's position
/// estimated; else, when people have image boxes only, the one that the boxes show.
/// `input` holds the files and, when known, the image size and the rate.
void assembleInput(std::unique_ptr<ObservationTable> observations, const InputOptions& options,
                   OpenedInput& input);

/// The same for people's places out of a table, which may also say how fast its frames follow.
void openRecording(TrackRecording recording, const InputOptions& options, OpenedInput& input);

/// Gives the frames their times: all of them when the user wishes a rate (frame numbers a second),
/// else those without, when the input itself says how fast they follow.
void giveTimes(const std::optional<double>& wishedRate, OpenedInput& input);

/// The rate by which frames get their times, where the user wishes one or the input says it.
std::optional<FrameRate> rateOf(const std::optional<double>& wished, const OpenedInput& input);

/// The camera behind a homography; `farthest` is the largest column and row at which anything is
/// seen, which gives the image size when nobody knows it.
QSharedPointer<kelAbstractDataCalibration> cameraOf(const cv::Matx33d& homography,
                                                    const std::optional<cv::Size>& imageSize,
                                                    const cv::Point2d& farthest);

}  // namespace grouptracker
