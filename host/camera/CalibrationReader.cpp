#include "CalibrationReader.h"

#include "GroundPlaneCalibration.h"
#include "InputError.h"
#include "InputFile.h"
#include "LineReader.h"
#include "PinholeCalibration.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <regex>
#include <system_error>
#include <vector>

namespace {

constexpr std::uintmax_t largestFile =
    std::uintmax_t{1024} * 1024;  // bytes; a camera takes less than one thousand

/// One calibration file and its nodes, each checked for its size and for finite numbers.
class CalibrationFile {
 public:
  explicit CalibrationFile(const std::string& path) : m_path(path), m_storage(open(path)) {}

  bool has(const char* node) const { return !m_storage[node].empty(); }
  std::vector<double> numbers(const char* node, const std::vector<std::size_t>& counts) const;
  cv::Matx33d matrix(const char* node) const { return cv::Matx33d(numbers(node, {9}).data()); }
  cv::Vec3d vector(const char* node) const { return cv::Vec3d(numbers(node, {3}).data()); }
  /// The error for a problem with a node, at the line that names it.
  InputError error(const char* node, const std::string& problem) const;

 private:
  static cv::FileStorage open(const std::string& path);

  std::string m_path;
  cv::FileStorage m_storage;
};

/// OpenCV's message carries the line in brackets behind the file's name.
InputError storageError(const std::string& path, const cv::Exception& failure) {
  const std::string text = failure.what();
  std::smatch found;
  if (std::regex_search(text, found, std::regex(R"(\((\d+)\): ([^'\n]*))"))) {
    return {path, std::stoull(found[1]), "not a readable OpenCV file: " + found[2].str()};
  }
  return {path, 1, "not a readable OpenCV file"};
}

cv::FileStorage CalibrationFile::open(const std::string& path) {
  const InputFile canBeOpened(path);
  std::error_code unknown;
  const std::uintmax_t size = std::filesystem::file_size(path, unknown);
  if (unknown || size > largestFile) {
    throw InputError(path, unknown ? "not a file" : "too large for a calibration");
  }
  try {
    cv::FileStorage storage(path, cv::FileStorage::READ);
    if (storage.isOpened()) {
      return storage;
    }
  } catch (const cv::Exception& failure) {
    throw storageError(path, failure);
  }
  throw InputError(path, 1, "not a readable OpenCV file");
}

InputError CalibrationFile::error(const char* node, const std::string& problem) const {
  InputFile file(m_path);
  LineReader lines(file.stream(), m_path);
  while (lines.next()) {
    if (lines.line().find(node) != std::string::npos) {
      return lines.error(node + problem);
    }
  }
  return {m_path, 1, node + problem};
}

std::vector<double> CalibrationFile::numbers(const char* node,
                                             const std::vector<std::size_t>& counts) const {
  cv::Mat values;
  try {
    m_storage[node] >> values;
    cv::Mat(values.reshape(1, 1)).convertTo(values, CV_64F);
  } catch (const cv::Exception&) {
    throw error(node, " is missing or no matrix");
  }
  std::vector<double> numbers(values.begin<double>(), values.end<double>());
  if (std::find(counts.begin(), counts.end(), numbers.size()) == counts.end()) {
    throw error(node, " has " + std::to_string(numbers.size()) + " values");
  }
  if (!std::all_of(numbers.begin(), numbers.end(), [](double x) { return std::isfinite(x); })) {
    throw error(node, " holds a number that is not finite");
  }
  return numbers;
}

QSharedPointer<kelAbstractDataCalibration> readPinhole(const CalibrationFile& file) {
  const cv::Matx33d cameraMatrix = file.matrix("camera_matrix");
  if (cameraMatrix(0, 0) == 0.0 || cameraMatrix(1, 1) == 0.0) {
    throw file.error("camera_matrix", " has no focal length");
  }
  const auto distortion = file.has("distortion_coefficients")
                              ? file.numbers("distortion_coefficients", {4, 5, 8})
                              : std::vector<double>();
  const cv::Vec3d rotation = file.vector("rotation_vector");
  const cv::Vec3d translation = file.vector("translation_vector");
  return QSharedPointer<PinholeCalibration>::create(cameraMatrix, distortion, rotation,
                                                    translation);
}

QSharedPointer<kelAbstractDataCalibration> readGroundPlane(const CalibrationFile& file) {
  const cv::Matx33d homography = file.matrix("homography");
  const cv::Vec3d position = file.vector("camera_position");
  if (cv::determinant(homography) == 0.0) {
    throw file.error("homography", " cannot be inverted");
  }
  if (position[2] == 0.0) {
    throw file.error("camera_position", " lies on the ground");
  }
  return QSharedPointer<GroundPlaneCalibration>::create(homography, cv::Point3d(position));
}

}  // namespace

QSharedPointer<kelAbstractDataCalibration> readCalibration(const std::string& path) {
  const CalibrationFile file(path);
  if (file.has("camera_matrix")) {
    return readPinhole(file);
  }
  if (file.has("homography")) {
    return readGroundPlane(file);
  }
  throw InputError(path, 1, "neither camera_matrix nor homography found");
}
