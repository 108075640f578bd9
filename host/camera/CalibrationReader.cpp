#include "host/camera/CalibrationReader.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/camera/HostCalibration.h"
#include "host/camera/StorageText.h"
#include "host/camera/TsaiCalibration.h"

#include <QRegularExpression>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>
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

using Json = nlohmann::json;

/// Keeps of the scene's line the camera only, so that the rest, however much, takes no memory.
bool keepCamera(int depth, Json::parse_event_t event, const Json& parsed) {
  constexpr int depthOfNodes = 3;  // the line, the camera, a node's array
  const bool isOther = event == Json::parse_event_t::key && depth == 1;
  return depth <= depthOfNodes && (!isOther || parsed == sceneCalibrationKey);
}

/// The nodes of a camera in a JSON object; problems are those of the line that holds it.
class JsonNodes : public CalibrationNodes {
 public:
  JsonNodes(Json object, const LineReader& lines) : m_object(std::move(object)), m_lines(lines) {}

  bool has(const char* node) const override { return m_object.contains(node); }
  std::vector<double> numbers(const char* node,
                              const std::vector<std::size_t>& counts) const override;
  [[noreturn]] void fail(const char* node, const std::string& problem) const override {
    throw m_lines.error(node + problem);
  }

 private:
  Json m_object;
  const LineReader& m_lines;
};

std::vector<double> JsonNodes::numbers(const char* node,
                                       const std::vector<std::size_t>& counts) const {
  const auto found = m_object.find(node);
  const bool isArray = found != m_object.end() && found->is_array() &&
                       std::all_of(found->begin(), found->end(), [](const Json& value) {
                         return value.is_number() && std::isfinite(value.get<double>());
                       });
  if (!isArray || std::find(counts.begin(), counts.end(), found->size()) == counts.end()) {
    fail(node, " is missing or has not as many numbers as it should");
  }
  return found->get<std::vector<double>>();
}

/// The camera's object in the line; none when there is none or the line is no JSON.
std::optional<Json> cameraIn(const std::string& line) {
  if (line.find(sceneCalibrationKey) == std::string::npos) {
    return std::nullopt;
  }
  const Json scene = Json::parse(line, keepCamera, false);
  if (!scene.is_object() || !scene.contains(sceneCalibrationKey)) {
    return std::nullopt;
  }
  return scene[sceneCalibrationKey];
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

QSharedPointer<HostCalibration> readSceneCalibration(const std::string& path) {
  InputFile file(path);
  LineReader lines(file.stream(), path);
  std::optional<Json> camera;
  if (lines.nextFilled()) {
    camera = cameraIn(lines.line());
  }
  if (!camera) {
    return nullptr;
  }
  auto calibration = camera->is_object() ? makeCalibration(JsonNodes(*camera, lines)) : nullptr;
  if (!calibration) {
    throw lines.error(std::string(sceneCalibrationKey) + " describes no camera");
  }
  return calibration;
}

}  // namespace grouptracker
