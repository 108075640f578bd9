#pragma once

#include "host/camera/PeopleCamera.h"
#include "host/input/OpenedInput.h"

#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// The names by which a user may choose a format.
std::vector<std::string> inputFormats();

/// Opens an input in the chosen format, or else asks each known format in turn whether the input's
/// content is its own.
/// To add a format, write its reader and add a row to the table in the .cpp file.
/// The frames come with the images and within the range that the options say.
/// An input that cannot be opened or that no format takes is an `InputError`.
OpenedInput openInput(const std::string& path, const InputOptions& options);

/// How far the first two frames of an input are apart; none when it has no times, fewer frames, or
/// can be read only once. Opens the input for itself.
std::optional<double> secondsBetweenFrames(const std::string& path, InputOptions options);

/// What an input says about the camera that made it.
struct PeopleView {
  std::vector<PersonBox> boxes;
  std::optional<cv::Size> imageSize;  ///< pixels; none when the input does not say
};

/// Reads the people's boxes of an input within the range of frames. One without image boxes is an
/// `InputError`.
PeopleView readPeopleView(const std::string& path, const InputOptions& options);

/// The files within an input's folder that are read when it is one; none for an input of one file.
std::vector<std::string> filesWithin(const std::string& path);

}  // namespace grouptracker
