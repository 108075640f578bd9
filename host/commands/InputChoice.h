#pragma once

#include "host/commands/Options.h"
#include "host/input/InputImages.h"
#include "host/input/OpenedInput.h"

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace grouptracker {

/// What the user says about an input on the command line, the same for every command that reads
/// one: what was given to one command can be given to the next. Texts are empty when the option was
/// not given.
struct InputChoice {
  std::string input;
  std::string format;
  std::string calibrationFile;
  std::string homographyOrder;        ///< "colrow" or "rowcol", of a calibration that is a text
  std::optional<cv::Size> imageSize;  ///< pixels
  std::optional<double> minConfidence;
  std::string images;                        ///< a folder, a video file, or `noImages`
  bool allowsOutsideImages = false;          ///< of the input's folder
  std::int64_t maxPixels = usualMostPixels;  ///< of an image or a video
  FrameRange frames;
  std::optional<double> rate;  ///< frame numbers a second
  TableChoice table;
  std::string messageMapFile;
  int mostPeople = static_cast<int>(MessageLimits().people);
  double maxLateness = MessageChoice().maxLateness;  ///< seconds
  BrokerAccess broker;                               ///< of commands that read topics
  LinkOptions links;
};

/// Adds INPUT and the options that say how to read it.
void declareInput(Options& command, InputChoice& choice);
/// The same for a command that can do something without an input, too, and tells by itself that
/// there is none.
void declareOptionalInput(Options& command, InputChoice& choice);
/// Adds the options only, for a command whose input has another name. To be added last, as they
/// have a heading of their own.
void declareReading(Options& command, InputChoice& choice);

/// The finite number that a text is; none for any other text.
std::optional<double> parseFinite(const std::string& text);

/// What the choice means for the reader; reads the calibration file. The file may be a camera, or
/// three lines of three numbers: a homography from the image to the ground.
InputOptions inputOptions(const InputChoice& choice);

}  // namespace grouptracker
