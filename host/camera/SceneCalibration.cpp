#include "host/camera/SceneCalibration.h"

#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/camera/CalibrationNodes.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace grouptracker {

namespace {

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
