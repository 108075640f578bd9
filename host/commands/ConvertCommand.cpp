#include "host/base/Log.h"
#include "host/base/OutputPlace.h"
#include "host/camera/HostCalibration.h"
#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/input/InputFormats.h"
#include "host/output/SceneWriter.h"
#include "host/pictures/VideoFile.h"

#include <fmt/format.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

/// `grouptracker convert`: writes any input as a scene file that a run takes as it would the input.
class ConvertCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  InputChoice m_choice;
  std::string m_outputFile;
};

namespace fs = std::filesystem;

const char* const convertExample = R"(Example:
  grouptracker convert tracks.txt --calibration camera.yml --output scene.jsonl)";

/// The camera as the scene's first line holds it; empty without one.
std::string cameraText(const OpenedInput& input) {
  const auto camera = qSharedPointerDynamicCast<HostCalibration>(input.calibration);
  return camera ? calibrationText(*camera) : std::string();
}

/// Names the images of frames as a scene file does, relative to its folder. Those that are in no
/// file of their own, but in a video, get one each, in a folder beside the scene: scene.jsonl has
/// scene-images.
class SceneImages {
 public:
  explicit SceneImages(const fs::path& scene)
      : m_folder(fs::absolute(scene).parent_path()), m_name(scene.stem().string() + "-images") {}

  void settle(InputFrame& frame) {
    if (!frame.imageFile.empty()) {
      frame.imageFile = fs::absolute(frame.imageFile).lexically_proximate(m_folder);
    } else if (frame.image) {
      if (!m_images) {
        m_images = std::make_unique<VideoFile>(m_folder / m_name, 1.0);
      }
      m_images->add(frame.image->mat(), ++m_written);
      frame.imageFile = m_name / VideoFile::imageName(m_written);
    }
  }

 private:
  fs::path m_folder;
  fs::path m_name;
  std::unique_ptr<VideoFile> m_images;  ///< null before the first
  std::int64_t m_written = 0;
};

}  // namespace

Options ConvertCommand::declare(CommandLine& program) {
  Options command = program.addCommand(
      "convert", "Writes an input as a scene file with all that a run needs", convertExample);
  declareInput(command, m_choice);
  command.add("--output", m_outputFile, "the scene file *.jsonl").required().writes("FILE");
  return command;
}

int ConvertCommand::run() {
  OpenedInput input = openInput(m_choice.input, inputOptions(m_choice));
  for (const std::string& note : input.notes) {
    program_log::write(program_log::Level::info, note);
  }
  refuseOverwriting({m_outputFile}, input.files);
  SceneWriter scene(m_outputFile);
  scene.carryCalibration(cameraText(input));
  scene.keepNumbers();
  if (!m_choice.frames.isWhole()) {
    scene.startLate();
  }
  SceneImages images(m_outputFile);
  std::uint64_t frames = 0;
  for (InputFrame frame; input.frames->next(frame); ++frames) {
    images.settle(frame);
    scene.write(frame);
  }
  program_log::write(program_log::Level::info, fmt::format("{} frames", frames));
  return finished;
}

std::unique_ptr<Command> makeConvertCommand() {
  return std::make_unique<ConvertCommand>();
}

}  // namespace grouptracker
