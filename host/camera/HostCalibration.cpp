#include "host/camera/HostCalibration.h"

#include "host/base/JsonLine.h"
#include "host/base/OutputFile.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/camera/PinholeCalibration.h"
#include "host/camera/TsaiCalibration.h"

#include <fmt/format.h>
#include <opencv2/core.hpp>

#include <array>

namespace grouptracker {

namespace {

cv::Matx33d matrix(const CalibrationNodes& nodes, const char* node) {
  return cv::Matx33d(nodes.numbers(node, {9}).data());
}

cv::Vec3d vector(const CalibrationNodes& nodes, const char* node) {
  return cv::Vec3d(nodes.numbers(node, {3}).data());
}

QSharedPointer<HostCalibration> makePinhole(const CalibrationNodes& nodes) {
  const cv::Matx33d cameraMatrix = matrix(nodes, "camera_matrix");
  if (cameraMatrix(0, 0) == 0.0 || cameraMatrix(1, 1) == 0.0) {
    nodes.fail("camera_matrix", " has no focal length");
  }
  const auto distortion = nodes.has("distortion_coefficients")
                              ? nodes.numbers("distortion_coefficients", {4, 5, 8})
                              : std::vector<double>();
  const cv::Vec3d rotation = vector(nodes, "rotation_vector");
  const cv::Vec3d translation = vector(nodes, "translation_vector");
  return QSharedPointer<PinholeCalibration>::create(cameraMatrix, distortion, rotation,
                                                    translation);
}

QSharedPointer<HostCalibration> makeGroundPlane(const CalibrationNodes& nodes) {
  const cv::Matx33d homography = matrix(nodes, "homography");
  const cv::Vec3d position = vector(nodes, "camera_position");
  if (cv::determinant(homography) == 0.0) {
    nodes.fail("homography", " cannot be inverted");
  }
  if (position[2] == 0.0) {
    nodes.fail("camera_position", " lies on the ground");
  }
  return QSharedPointer<GroundPlaneCalibration>::create(homography, cv::Point3d(position));
}

QSharedPointer<HostCalibration> makeTsai(const CalibrationNodes& nodes) {
  const auto numbers = nodes.numbers("tsai_camera", {7});
  TsaiCamera camera{numbers[0], numbers[1], numbers[2], numbers[3], numbers[4],
                    numbers[5], numbers[6], {},         {}};
  if (camera.dpx == 0.0 || camera.dpy == 0.0 || camera.focal == 0.0 || camera.sx == 0.0) {
    nodes.fail("tsai_camera", " has no focal length or pixel size");
  }
  camera.rotation = vector(nodes, "tsai_rotation");
  camera.translation = vector(nodes, "tsai_translation");
  return QSharedPointer<TsaiCalibration>::create(camera);
}

struct Kind {
  const char* node;  ///< by which the kind is recognised
  QSharedPointer<HostCalibration> (*make)(const CalibrationNodes&);
};

const std::array<Kind, 3> kinds{{
    {"camera_matrix", makePinhole},
    {"homography", makeGroundPlane},
    {"tsai_camera", makeTsai},
}};

}  // namespace

QSharedPointer<HostCalibration> makeCalibration(const CalibrationNodes& nodes) {
  for (const Kind& kind : kinds) {
    if (nodes.has(kind.node)) {
      return kind.make(nodes);
    }
  }
  return nullptr;
}

void writeCalibration(const HostCalibration& camera, const std::string& path) {
  std::string text = "%YAML:1.0\n---\n";
  for (const CalibrationNode& node : camera.nodes()) {
    text +=
        fmt::format("{}: !!opencv-matrix\n   rows: {}\n   cols: {}\n   dt: d\n   data: [ {} ]\n",
                    node.name, node.rows, node.columns, json_line::joined(node.values, ", "));
  }
  OutputFile(path).writeLines(text);
}

std::string calibrationText(const HostCalibration& camera) {
  json_line::Line text;
  const char* separator = "{";
  for (const CalibrationNode& node : camera.nodes()) {
    json_line::append(text, "{}{}: ", separator, jsonText(node.name));
    json_line::appendNumbers(text, node.values);
    separator = ", ";
  }
  return fmt::to_string(text) + '}';
}

}  // namespace grouptracker
