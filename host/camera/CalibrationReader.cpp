#include "host/camera/CalibrationReader.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/camera/CalibrationNodes.h"
#include "host/camera/StorageCheck.h"
#include "host/camera/TsaiCalibration.h"
#include "host/camera/TsaiReader.h"

#include <QRegularExpression>
#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <exception>
#include <filesystem>
#include <system_error>
#include <vector>

namespace grouptracker {

namespace {

constexpr std::uintmax_t largestFile =
    std::uintmax_t{1024} * 1024;        // bytes; a camera takes less than one thousand
constexpr int linesToRootElement = 20;  // of an XML file, comments included

/// One calibration file and its nodes, each checked for its size and for finite numbers. Problems
/// are reported at the line that names the node.
class CalibrationFile : public CalibrationNodes {
 public:
  explicit CalibrationFile(const std::string& path) : m_path(path), m_storage(open(path)) {}

  bool has(const char* node) const override;
  std::vector<double> numbers(const char* node,
                              const std::vector<std::size_t>& counts) const override;
  [[noreturn]] void fail(const char* node, const std::string& problem) const override;

 private:
  static cv::FileStorage open(const std::string& path);
  bool readMatrix(const char* node, cv::Mat& values) const;

  std::string m_path;
  cv::FileStorage m_storage;
};

/// Whether it says how many rows or columns a matrix has. OpenCV makes the matrix before it counts
/// the values, so a wild number would take all memory.
bool isSize(const cv::FileNode& node) {
  constexpr int largestSize = 16;
  return node.isInt() && static_cast<int>(node) > 0 && static_cast<int>(node) <= largestSize;
}

/// OpenCV's message carries the line in brackets behind the file's name.
InputError storageError(const std::string& path, const cv::Exception& failure) {
  static const QRegularExpression lineAndProblem(R"(\((\d+)\): ([^'\n]*))");
  const auto found = lineAndProblem.match(QString::fromUtf8(failure.what()));
  if (found.hasMatch()) {
    return {path, found.captured(1).toULongLong(),
            "not a readable OpenCV file: " + found.captured(2).toStdString()};
  }
  return {path, 1, "not a readable OpenCV file"};
}

cv::FileStorage CalibrationFile::open(const std::string& path) {
  std::error_code unknown;
  const std::uintmax_t size = std::filesystem::file_size(path, unknown);
  if (unknown || size > largestFile) {
    const InputFile canBeOpened(path);
    throw InputError(path, unknown ? "not a file" : "too large for a calibration");
  }
  InputFile file(path);
  refuseUnsoundStorage(file.stream(), path);
  try {
    cv::FileStorage storage(path, cv::FileStorage::READ);
    if (storage.isOpened()) {
      return storage;
    }
  } catch (const cv::Exception& failure) {
    throw storageError(path, failure);
  } catch (const std::exception&) {
    // Damage that OpenCV did not notice itself, such as a length below 0.
  }
  throw InputError(path, 1, "not a readable OpenCV file");
}

bool CalibrationFile::has(const char* node) const {
  try {
    return !m_storage[node].empty();
  } catch (const std::exception&) {
    return false;  // the file holds a list or a single value, in which nothing has a name
  }
}

void CalibrationFile::fail(const char* node, const std::string& problem) const {
  InputFile file(m_path);
  LineReader lines(file.stream(), m_path);
  while (lines.next()) {
    if (lines.line().find(node) != std::string::npos) {
      throw lines.error(node + problem);
    }
  }
  throw InputError(m_path, 1, node + problem);
}

bool CalibrationFile::readMatrix(const char* node, cv::Mat& values) const {
  try {
    const cv::FileNode matrix = m_storage[node];
    if (!isSize(matrix["rows"]) || !isSize(matrix["cols"])) {
      return false;
    }
    matrix >> values;
    cv::Mat(values.reshape(1, 1)).convertTo(values, CV_64F);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

std::vector<double> CalibrationFile::numbers(const char* node,
                                             const std::vector<std::size_t>& counts) const {
  cv::Mat values;
  if (!readMatrix(node, values)) {
    fail(node, " is missing or no matrix");
  }
  std::vector<double> numbers(values.begin<double>(), values.end<double>());
  if (std::find(counts.begin(), counts.end(), numbers.size()) == counts.end()) {
    fail(node, " has " + std::to_string(numbers.size()) + " values");
  }
  if (!std::all_of(numbers.begin(), numbers.end(), [](double x) { return std::isfinite(x); })) {
    fail(node, " holds a number that is not finite");
  }
  return numbers;
}

bool isTsaiFile(const std::string& path) {
  InputFile file(path);
  LineReader lines(file.stream(), path, largestFile);
  for (int i = 0; i < linesToRootElement && lines.next(); ++i) {
    if (lines.line().find("<Camera") != std::string::npos) {
      return true;
    }
  }
  return false;
}

}  // namespace

QSharedPointer<kelAbstractDataCalibration> readCalibration(const std::string& path) {
  if (isTsaiFile(path)) {
    InputFile file(path);
    return QSharedPointer<TsaiCalibration>::create(readTsaiCamera(file.stream(), path));
  }
  const CalibrationFile file(path);
  const auto calibration = makeCalibration(file);
  if (!calibration) {
    throw InputError(path, 1, "neither camera_matrix nor homography found");
  }
  return calibration;
}

}  // namespace grouptracker
