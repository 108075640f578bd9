#include "host/camera/CalibrationWriter.h"

#include "host/base/JsonLine.h"
#include "host/base/OutputFile.h"

#include <fmt/format.h>

namespace grouptracker {

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
  std::string text;
  for (const CalibrationNode& node : camera.nodes()) {
    text += fmt::format(R"({}"{}": [{}])", text.empty() ? "{" : ", ", node.name,
                        json_line::joined(node.values, ", "));
  }
  return text + "}";
}

}  // namespace grouptracker
