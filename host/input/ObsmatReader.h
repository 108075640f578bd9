#pragma once

#include "host/input/OpenedInput.h"
#include "host/people/ObservationTable.h"

#include <istream>
#include <memory>
#include <string>

namespace grouptracker {

/// Reads people's places from text with eight numbers a line: frame, person, x, (z), y, vx, (vz),
/// vy; metres and metres per second on the ground, z and the speeds are not used. For example
///
///     7.8000000e+02 1.0000000e+00 8.4568443e+00 0.0 3.5880664e+00 1.6717144e+00 0.0 1.7629183e-01
///
/// Lines may come in any order; blank lines are passed over. Another count of numbers, text, and
/// frames and persons that are no whole numbers are an `InputError`; when `onProblem` does not
/// throw it, the line is passed over.
std::unique_ptr<ObservationTable> readObsmat(std::istream& in, const std::string& name,
                                             const ProblemHandler& onProblem = throwProblem);
/// The same for a file.
std::unique_ptr<ObservationTable> readObsmat(const std::string& path,
                                             const ProblemHandler& onProblem = throwProblem);

/// Whether the folder holds `obsmat.txt`.
bool isTrajectoryFolder(const std::string& path);
/// The file with the homography that is read beside such a folder's or file's observations, if it
/// is there; empty beside other files.
std::string homographyBeside(const std::string& path);
/// Whether a line could be one of such a file.
bool isObsmatLine(const std::string& line);

/// Opens a folder with `obsmat.txt` (see `readObsmat`), or that file alone. Unless a calibration is
/// given, the file `H.txt` beside it is the homography, which takes (row, column, 1); the camera's
/// position is then estimated. Without such a file there is no camera and people have no boxes in
/// the image.
OpenedInput openTrajectory(const std::string& path, const InputOptions& options);

}  // namespace grouptracker
