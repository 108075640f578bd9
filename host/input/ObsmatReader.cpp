#include "host/input/ObsmatReader.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/base/TextNumbers.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/input/OpenedInput.h"
#include "host/people/ObservationSource.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

const char* const observationName = "obsmat.txt";

struct ObsmatColumn {
  enum : std::uint8_t { frame = 0, person = 1, x = 2, y = 4, count = 8 };
};

void addRow(const std::vector<double>& row, std::uint64_t line, ObservationTable& table) {
  if (row.size() != ObsmatColumn::count) {
    throw ValueProblem(std::to_string(ObsmatColumn::count) + " numbers are expected, not " +
                       std::to_string(row.size()));
  }
  const std::int64_t frame = wholeNumber(row[ObsmatColumn::frame], largestFrame, "frame");
  const std::int64_t person = wholeNumber(row[ObsmatColumn::person], largestPerson, "person");
  const cv::Point2d position(row[ObsmatColumn::x], row[ObsmatColumn::y]);
  expectMetres(position);
  table.add(frame, {static_cast<std::uint32_t>(person), position, std::nullopt}, line);
}

std::string observationFile(const std::string& folder) {
  return fs::path(folder) / observationName;
}

/// The homography that the user gives, or that lies beside the observations; notes its file.
std::optional<cv::Matx33d> homographyOf(const InputOptions& options, OpenedInput& input) {
  const std::string file = homographyBeside(input.files.front());
  if (options.homography || file.empty() || !fs::exists(file)) {
    return options.homography;
  }
  input.files.push_back(file);
  return readHomography(file, ImageOrder::rowColumn);
}

/// The largest column and row at which anybody is seen through the homography.
cv::Point2d farthestSeen(ObservationTable& observations, const cv::Matx33d& homography) {
  const cv::Matx33d groundToImage = homography.inv();
  cv::Point2d farthest;
  observations.visit([&](const ObservationRow& row) {
    const cv::Point2d seen = mapPoint(groundToImage, *row.observation.position);
    farthest = {std::max(farthest.x, seen.x), std::max(farthest.y, seen.y)};
  });
  return farthest;
}

}  // namespace

std::unique_ptr<ObservationTable> readObsmat(std::istream& in, const std::string& name,
                                             const ProblemHandler& onProblem) {
  auto table = std::make_unique<ObservationTable>(name, onProblem);
  LineReader lines(in, name, longestRow);
  std::vector<double> row;
  while (lines.nextFilled()) {
    try {
      parseNumbers(lines.line(), row);
      addRow(row, lines.number(), *table);
    } catch (const ValueProblem& problem) {
      onProblem(lines.error(problem.what()));
    }
  }
  table->finish();
  return table;
}

std::unique_ptr<ObservationTable> readObsmat(const std::string& path,
                                             const ProblemHandler& onProblem) {
  InputFile file(path);
  return readObsmat(file.stream(), path, onProblem);
}

bool isTrajectoryFolder(const std::string& path) {
  return fs::exists(observationFile(path));
}

std::string homographyBeside(const std::string& path) {
  const fs::path observations = isTrajectoryFolder(path) ? observationFile(path) : path;
  return observations.filename() == observationName ? observations.parent_path() / "H.txt"
                                                    : fs::path();
}

bool isObsmatLine(const std::string& line) {
  std::vector<double> row;
  try {
    parseNumbers(line, row);
  } catch (const ValueProblem&) {
    return false;
  }
  return row.size() == ObsmatColumn::count;
}

OpenedInput openTrajectory(const std::string& path, const InputOptions& options) {
  OpenedInput input;
  input.files.push_back(fs::is_directory(path) ? observationFile(path) : path);
  auto observations = readObsmat(input.files.back(), options.onProblem);
  input.calibration = options.calibration;
  input.imageSize = options.imageSize;
  const auto homography = input.calibration ? std::nullopt : homographyOf(options, input);
  if (homography) {
    input.calibration =
        cameraOf(*homography, input.imageSize, farthestSeen(*observations, *homography));
  }
  assembleFrames(std::move(observations), options, input);
  return input;
}

}  // namespace grouptracker
