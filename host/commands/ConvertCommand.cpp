#include "host/commands/ConvertCommand.h"

#include "host/base/FileIdentity.h"
#include "host/camera/CalibrationWriter.h"
#include "host/input/ImageFolder.h"
#include "host/input/InputFormats.h"
#include "host/output/SceneWriter.h"

#include <fmt/format.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

const char* const example = R"(Example:
  grouptracker convert tracks.txt --calibration camera.yml --output scene.jsonl)";

/// The camera as the scene's first line holds it; empty without one.
std::string cameraText(const OpenedInput& input) {
  const auto camera = qSharedPointerDynamicCast<HostCalibration>(input.calibration);
  return camera ? calibrationText(*camera) : std::string();
}

}  // namespace

Options ConvertCommand::declare(CommandLine& program) {
  Options command = program.addCommand(
      "convert", "Writes an input as a scene file with all that a run needs", example);
  declareInput(command, m_choice);
  declareCalibration(command, m_choice);
  declareImageSize(command, m_choice);
  declareLinks(command, m_choice);
  command.add("--images", m_imageFolder, "images by sorted name, for inputs that name none")
      .typeName("FOLDER");
  command.add("--output", m_outputFile, "the scene file *.jsonl").required().typeName("FILE");
  return command;
}

int ConvertCommand::run() {
  OpenedInput input = openInput(m_choice.input, inputOptions(m_choice));
  for (const std::string& note : input.notes) {
    fmt::print(stderr, "{}\n", note);
  }
  if (!m_imageFolder.empty()) {
    input.frames = std::make_unique<ImageFolder>(std::move(input.frames), m_imageFolder);
  }
  std::vector<std::string> inputs = input.files;
  inputs.push_back(m_choice.calibrationFile);
  refuseOverwriting({m_outputFile}, inputs);
  SceneWriter scene(m_outputFile);
  scene.carryCalibration(cameraText(input));
  const fs::path folder = fs::absolute(m_outputFile).parent_path();
  std::uint64_t frames = 0;
  for (InputFrame frame; input.frames->next(frame); ++frames) {
    if (!frame.imageFile.empty()) {
      frame.imageFile = fs::absolute(frame.imageFile).lexically_proximate(folder);
    }
    scene.write(frame);
  }
  fmt::print(stderr, "{} frames\n", frames);
  return finished;
}

}  // namespace grouptracker
